#include <QXFoundation/sort_descriptor.h>

#include "frame/library_class.h"

namespace qx {
namespace {

constexpr Selector kCompare("compare:");

PropertyValue selectorName(const detail::Subject& subject, const detail::Payload&) {
  const Selector selector = subject.as<SortDescriptor>().selector();
  return selector.isNull() ? PropertyValue() : PropertyValue(selector.text());
}

}  // namespace

SortDescriptor::SortDescriptor() : SortDescriptor(nullptr, true, kCompare) {}
SortDescriptor::SortDescriptor(StringArg key, bool ascending, Selector selector)
    : key_(key.string()), ascending_(ascending), selector_(selector) {}
SortDescriptor::~SortDescriptor() = default;

Ref<SortDescriptor> SortDescriptor::initWithKey(StringArg key, bool ascending,
                                                SelectorFor<1> selector) {
  return make<SortDescriptor>(key, ascending, selector);
}
Ref<SortDescriptor> SortDescriptor::initWithKey(StringArg key, bool ascending) {
  return initWithKey(key, ascending, kCompare);
}
Ref<SortDescriptor> SortDescriptor::sortDescriptorWithKey(StringArg key, bool ascending,
                                                          SelectorFor<1> selector) {
  return initWithKey(key, ascending, selector);
}
Ref<SortDescriptor> SortDescriptor::sortDescriptorWithKey(StringArg key, bool ascending) {
  return initWithKey(key, ascending, kCompare);
}

Ref<SortDescriptor> SortDescriptor::reversedSortDescriptor() const {
  return initWithKey(key_, !ascending_, selector_);
}

int SortDescriptor::compareAscending(const PropertyValue& a, const PropertyValue& b) const {
  if (a.isNil() || b.isNil()) return static_cast<int>(b.isNil()) - static_cast<int>(a.isNil());
  if (selector_ == kCompare) return static_cast<int>(a.compare(b));
  const int order = performSelector(a, SelectorFor<1>(selector_), b).intValue();
  return (order > 0) - (order < 0);
}

int SortDescriptor::compareObject(const PropertyValue& object,
                                  const PropertyValue& toObject) const {
  const bool isPath = key_ != nullptr;
  const int order = compareAscending(isPath ? object.valueForKeyPath(key_) : object,
                                     isPath ? toObject.valueForKeyPath(key_) : toObject);
  return ascending_ ? order : -order;
}

void describe(ClassBuilder<SortDescriptor>& c) {
  c.name("NSSortDescriptor").inherits<Object>();
  c.property("key", &SortDescriptor::key).property("ascending", &SortDescriptor::ascending);
  c.addProperty({"selector", &selectorName, nullptr, nullptr, detail::FieldType::none, {}});
  c.operation("compareObject:toObject:", &SortDescriptor::compareObject);
  c.operation("reversedSortDescriptor", &SortDescriptor::reversedSortDescriptor);
}

const Class& classObject(detail::Type<SortDescriptor>) {
  return detail::buildLibraryClass<SortDescriptor>();
}

}  // namespace qx
