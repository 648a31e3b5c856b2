#include <QXFoundation/archiver.h>
#include <QXFoundation/sort_ordering.h>

#include "frame/library_class.h"

namespace qx {
namespace {

PropertyValue nameOf(Selector selector) {
  return selector.isNull() ? PropertyValue() : PropertyValue(selector.text());
}

PropertyValue selectorName(const detail::Subject& subject, const detail::Payload&) {
  return nameOf(subject.as<QXSortOrdering>().selector());
}

}  // namespace

QXSortOrdering::QXSortOrdering() = default;
QXSortOrdering::QXSortOrdering(StringArg key, Selector selector)
    : key_(key.string()), selector_(selector) {}
QXSortOrdering::~QXSortOrdering() = default;

Ref<QXSortOrdering> QXSortOrdering::sortOrderingWithKey(StringArg key, SelectorFor<1> selector) {
  return initWithKey(key, selector);
}
Ref<QXSortOrdering> QXSortOrdering::initWithKey(StringArg key, SelectorFor<1> selector) {
  return make<QXSortOrdering>(key, selector);
}
Ref<QXSortOrdering> QXSortOrdering::initWithCoder(Unarchiver& coder) {
  const auto key = coder.decode<Ref<String>>();
  return initWithKey(key, Selector::named(coder.decode<Ref<String>>()));
}

void QXSortOrdering::encodeWithCoder(Archiver& coder) const {
  coder.encodeObject(key_);
  coder.encodeObject(nameOf(selector_));
}

namespace detail {

// What is written is part of the form of archives.
struct SortOrderingCoding {
  static void encode(const QXSortOrdering& o, Archiver& a) { o.encodeWithCoder(a); }
  static void decode(QXSortOrdering& o, Unarchiver& u) {
    const Ref<QXSortOrdering> decoded = QXSortOrdering::initWithCoder(u);
    o.key_ = decoded->key_;
    o.selector_ = decoded->selector_;
  }
};

}  // namespace detail

void describe(ClassBuilder<QXSortOrdering>& c) {
  c.name("QXSortOrdering").inherits<Object>().archivedBy<detail::SortOrderingCoding>();
  c.property("key", &QXSortOrdering::key);
  c.addProperty({"selector", &selectorName, nullptr, nullptr, detail::FieldType::none, {}});
  c.addClassOperation(
      {"sortOrderingWithKey:selector:",
       [](const PropertyValue&, const detail::Payload&, const PropertyValue* a) -> PropertyValue {
         return QXSortOrdering::sortOrderingWithKey(
             FromValue<Ref<String>>::get(a[0]), Selector::named(FromValue<Ref<String>>::get(a[1])));
       },
       2,
       {}});
}

const Class& classObject(detail::Type<QXSortOrdering>) {
  return detail::buildLibraryClass<QXSortOrdering>();
}

}  // namespace qx
