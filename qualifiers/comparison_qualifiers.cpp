// Comparisons: of a key with a constant, and of two keys.

#include <QXFoundation/qualifier.h>

#include "frame/library_class.h"
#include "qualifiers/coding.h"
#include "qualifiers/leaf_test.h"

namespace qx {
namespace {

// The property "selector": the name, nil for the null selector.
template <class Q>
PropertyValue selectorName(const detail::Subject& subject, const detail::Payload&) {
  const Selector selector = subject.as<Q>().selector();
  return selector.isNull() ? PropertyValue() : PropertyValue(selector.text());
}

}  // namespace

QXKeyValueQualifier::QXKeyValueQualifier() : QXKeyValueQualifier(nullptr, Selector(), nullptr) {}
QXKeyValueQualifier::QXKeyValueQualifier(StringArg key, SelectorFor<1> operatorSelector,
                                         const PropertyValue& value)
    : test_(std::make_unique<detail::ConstantTest>(key.string(), operatorSelector, value)) {}
QXKeyValueQualifier::~QXKeyValueQualifier() = default;

Ref<QXKeyValueQualifier> QXKeyValueQualifier::init() { return make<QXKeyValueQualifier>(); }
Ref<QXKeyValueQualifier> QXKeyValueQualifier::initWithKey(StringArg key,
                                                          SelectorFor<1> operatorSelector,
                                                          const PropertyValue& value) {
  return make<QXKeyValueQualifier>(key, operatorSelector, value);
}

const Ref<String>& QXKeyValueQualifier::key() const { return test_->path.text(); }
Selector QXKeyValueQualifier::selector() const { return test_->selector; }
const PropertyValue& QXKeyValueQualifier::value() const { return test_->value; }
bool QXKeyValueQualifier::evaluateWithObject(const PropertyValue& object) const {
  return test_->evaluate(object);
}
Ref<Object> QXKeyValueQualifier::copy() const { return initWithKey(key(), selector(), value()); }

QXKeyComparisonQualifier::QXKeyComparisonQualifier()
    : QXKeyComparisonQualifier(nullptr, Selector(), nullptr) {}
QXKeyComparisonQualifier::QXKeyComparisonQualifier(StringArg leftKey,
                                                   SelectorFor<1> operatorSelector,
                                                   StringArg rightKey)
    : test_(std::make_unique<detail::KeyPairTest>(leftKey.string(), operatorSelector,
                                                  rightKey.string())) {}
QXKeyComparisonQualifier::~QXKeyComparisonQualifier() = default;

Ref<QXKeyComparisonQualifier> QXKeyComparisonQualifier::init() {
  return make<QXKeyComparisonQualifier>();
}
Ref<QXKeyComparisonQualifier> QXKeyComparisonQualifier::initWithLeftKey(
    StringArg leftKey, SelectorFor<1> operatorSelector, StringArg rightKey) {
  return make<QXKeyComparisonQualifier>(leftKey, operatorSelector, rightKey);
}

const Ref<String>& QXKeyComparisonQualifier::leftKey() const { return test_->left.text(); }
Selector QXKeyComparisonQualifier::selector() const { return test_->selector; }
const Ref<String>& QXKeyComparisonQualifier::rightKey() const { return test_->right.text(); }
bool QXKeyComparisonQualifier::evaluateWithObject(const PropertyValue& object) const {
  return test_->evaluate(object);
}
Ref<Object> QXKeyComparisonQualifier::copy() const {
  return initWithLeftKey(leftKey(), selector(), rightKey());
}

void describe(ClassBuilder<QXKeyValueQualifier>& c) {
  c.name("QXKeyValueQualifier").inherits<QXQualifier>().archivedBy<detail::QualifierCoding>();
  c.property("key", &QXKeyValueQualifier::key).property("value", &QXKeyValueQualifier::value);
  c.addProperty({"selector",
                 &selectorName<QXKeyValueQualifier>,
                 nullptr,
                 nullptr,
                 detail::FieldType::none,
                 {}});
}
void describe(ClassBuilder<QXKeyComparisonQualifier>& c) {
  c.name("QXKeyComparisonQualifier").inherits<QXQualifier>().archivedBy<detail::QualifierCoding>();
  c.property("leftKey", &QXKeyComparisonQualifier::leftKey);
  c.property("rightKey", &QXKeyComparisonQualifier::rightKey);
  c.addProperty({"selector",
                 &selectorName<QXKeyComparisonQualifier>,
                 nullptr,
                 nullptr,
                 detail::FieldType::none,
                 {}});
}

const Class& classObject(detail::Type<QXKeyValueQualifier>) {
  return detail::buildLibraryClass<QXKeyValueQualifier>();
}
const Class& classObject(detail::Type<QXKeyComparisonQualifier>) {
  return detail::buildLibraryClass<QXKeyComparisonQualifier>();
}

}  // namespace qx
