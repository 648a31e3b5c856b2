// And, or, not.

#include <vector>

#include <QXFoundation/qualifier.h>

#include "frame/library_class.h"
#include "qualifiers/coding.h"
#include "qualifiers/tree_walk.h"

namespace qx {

namespace detail {
namespace {

std::size_t countUpToNil(const In<QXQualifier>* list, std::size_t count) {
  std::size_t n = 0;
  while (n < count && list[n]) ++n;
  return n;
}

}  // namespace

Ref<Array> listQualifiers(const In<QXQualifier>* first, std::size_t count) {
  const auto list = MutableArray::init();
  for (std::size_t i = 0, n = countUpToNil(first, count); i < n; ++i)
    list->addObject(first[i].get());
  return Array::from(list->begin(), list->count());
}

// Takes one, looks at the next to see whether to go on, takes the one after it: which, after an
// even number, is the nil that ends the list.
Ref<Array> listAlternateQualifiers(const In<QXQualifier>* first, std::size_t count) {
  const std::size_t n = countUpToNil(first, count);
  const auto list = MutableArray::init();
  std::size_t at = 0;
  do {
    list->addObject(at < n ? PropertyValue(first[at].get()) : PropertyValue());
    at += 2;
  } while (at <= n);
  return Array::from(list->begin(), list->count());
}

}  // namespace detail

namespace {

Ref<Array> copied(const Ref<Array>& array) {
  return array == nullptr ? Ref<Array>() : PropertyValue(array->copy()).as<Array>();
}

}  // namespace

Ref<QXAndQualifier> QXAndQualifier::init() { return make<QXAndQualifier>(); }
Ref<QXAndQualifier> QXAndQualifier::initWithQualifierArray(In<Array> qualifiers) {
  return make<QXAndQualifier>(qualifiers);
}
bool QXAndQualifier::evaluateWithObject(const PropertyValue& object) const {
  return detail::evaluateTree({detail::NodeKind::conjunction, this}, object);
}
Ref<Object> QXAndQualifier::copy() const { return initWithQualifierArray(copied(qualifiers_)); }

Ref<QXOrQualifier> QXOrQualifier::init() { return make<QXOrQualifier>(); }
Ref<QXOrQualifier> QXOrQualifier::initWithQualifierArray(In<Array> qualifiers) {
  return make<QXOrQualifier>(qualifiers);
}
bool QXOrQualifier::evaluateWithObject(const PropertyValue& object) const {
  return detail::evaluateTree({detail::NodeKind::disjunction, this}, object);
}
Ref<Object> QXOrQualifier::copy() const { return initWithQualifierArray(copied(qualifiers_)); }

Ref<QXNotQualifier> QXNotQualifier::init() { return make<QXNotQualifier>(); }
Ref<QXNotQualifier> QXNotQualifier::initWithQualifier(In<QXQualifier> qualifier) {
  return make<QXNotQualifier>(qualifier);
}
bool QXNotQualifier::evaluateWithObject(const PropertyValue& object) const {
  return detail::evaluateTree({detail::NodeKind::negation, this}, object);
}

// A chain of nots is copied from the inside out, so that its length costs no stack.
Ref<Object> QXNotQualifier::copy() const {
  std::size_t chain = 1;
  const QXQualifier* inner = qualifier_.get();
  while (inner != nullptr && detail::exactKind(*inner) == detail::NodeKind::negation) {
    if (++chain > detail::kMaxNesting) detail::raiseNesting();
    inner = static_cast<const QXNotQualifier*>(inner)->qualifier_.get();
  }
  Ref<QXQualifier> copy;
  if (inner != nullptr) copy = PropertyValue(inner->copy()).as<QXQualifier>();
  for (; chain != 0; --chain) copy = initWithQualifier(copy);
  return copy;
}

void describe(ClassBuilder<QXAndQualifier>& c) {
  c.name("QXAndQualifier")
      .inherits<QXQualifier>()
      .archivedBy<detail::QualifierCoding>()
      .property("qualifiers", &QXAndQualifier::qualifiers);
}
void describe(ClassBuilder<QXOrQualifier>& c) {
  c.name("QXOrQualifier")
      .inherits<QXQualifier>()
      .archivedBy<detail::QualifierCoding>()
      .property("qualifiers", &QXOrQualifier::qualifiers);
}
void describe(ClassBuilder<QXNotQualifier>& c) {
  c.name("QXNotQualifier")
      .inherits<QXQualifier>()
      .archivedBy<detail::QualifierCoding>()
      .property("qualifier", &QXNotQualifier::qualifier);
}

const Class& classObject(detail::Type<QXAndQualifier>) {
  return detail::buildLibraryClass<QXAndQualifier>();
}
const Class& classObject(detail::Type<QXOrQualifier>) {
  return detail::buildLibraryClass<QXOrQualifier>();
}
const Class& classObject(detail::Type<QXNotQualifier>) {
  return detail::buildLibraryClass<QXNotQualifier>();
}

}  // namespace qx
