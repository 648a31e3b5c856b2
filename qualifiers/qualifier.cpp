#include <QXFoundation/array.h>
#include <QXFoundation/qualifier.h>

#include "frame/library_class.h"
#include "qualifiers/class_operations.h"
#include "qualifiers/coding.h"
#include "qualifiers/operator_table.h"
#include "qualifiers/tree_printer.h"

namespace qx {

const Protocol& QXQualifierEvaluation::protocol() {
  static constinit const Protocol p("QXQualifierEvaluation");
  return p;
}
const Protocol& QXKeyValueQualifierEvaluation::protocol() {
  static constinit const Protocol p("QXKeyValueQualifierEvaluation");
  return p;
}
const Protocol& QXKeyComparisonQualifierEvaluation::protocol() {
  static constinit const Protocol p("QXKeyComparisonQualifierEvaluation");
  return p;
}

namespace {

Ref<Array> operatorTexts(std::size_t count) {
  PropertyValue texts[std::size(detail::kOperators)];
  for (std::size_t i = 0; i < count; ++i) texts[i] = detail::kOperators[i].text;
  return Array::from(texts, count);
}

// The comparisons of the values, in the dictionary's order; a single one in `only` instead.
Ref<Array> comparisonsOf(In<Dictionary> values, Ref<QXQualifier>& only) {
  const std::size_t count = values ? values->count() : 0;
  const auto list = MutableArray::arrayWithCapacity(count);
  if (count == 0) return list;
  for (const auto& [key, value] : *values) {
    only = QXKeyValueQualifier::initWithKey(key, "isEqualTo:", value);
    list->addObject(only);
  }
  if (count != 1) only = nullptr;
  return list;
}

}  // namespace

Ref<QXQualifier> QXQualifier::init() { return make<QXQualifier>(); }

Ref<Array> QXQualifier::allQualifierOperators() {
  return operatorTexts(std::size(detail::kOperators));
}
Ref<Array> QXQualifier::relationalQualifierOperators() {
  return operatorTexts(detail::kRelationalOperators);
}

Ref<String> QXQualifier::stringForOperatorSelector(Selector selector) {
  const std::string_view text = detail::operatorText(selector);
  return text.empty() ? Ref<String>() : String::from(text);
}

Selector QXQualifier::operatorSelectorForString(StringArg string) {
  return detail::operatorSelector(string.utf8());
}

Ref<QXQualifier> QXQualifier::qualifierToMatchAllValues(In<Dictionary> values) {
  Ref<QXQualifier> only;
  const Ref<Array> list = comparisonsOf(values, only);
  return only != nullptr ? only : QXAndQualifier::initWithQualifierArray(list);
}

Ref<QXQualifier> QXQualifier::qualifierToMatchAnyValue(In<Dictionary> values) {
  Ref<QXQualifier> only;
  const Ref<Array> list = comparisonsOf(values, only);
  return only != nullptr ? only : QXOrQualifier::initWithQualifierArray(list);
}

bool QXQualifier::evaluateWithObject(const PropertyValue&) const { return false; }

Ref<QXQualifier> QXQualifier::qualifierWithBindings(In<Dictionary>, bool) const {
  return const_cast<QXQualifier*>(this);
}
Ref<QXQualifier> QXQualifier::qualifierByApplyingBindings(In<Dictionary> bindings) const {
  return qualifierWithBindings(bindings, false);
}
Ref<QXQualifier> QXQualifier::qualifierByApplyingBindingsAllVariablesRequired(
    In<Dictionary> bindings) const {
  return qualifierWithBindings(bindings, true);
}
Ref<Array> QXQualifier::bindingKeys() const { return MutableArray::init(); }
Ref<String> QXQualifier::keyPathForBindingKey(StringArg) const { return nullptr; }

Ref<Object> QXQualifier::copy() const { return const_cast<QXQualifier*>(this); }
std::string QXQualifier::description() const { return detail::describeTree(*this); }

void describe(ClassBuilder<QXQualifier>& c) {
  c.name("QXQualifier")
      .inherits<Object>()
      .archivedBy<detail::QualifierCoding>()
      .conforms<QXQualifierEvaluation>();
  c.operation("evaluateWithObject:", &QXQualifier::evaluateWithObject);
  c.operation(
      "qualifierWithBindings:requiresAllVariables:",
      +[](const PropertyValue& r, const Ref<Dictionary>& bindings, const PropertyValue& required) {
        return r.as<QXQualifier>()->qualifierWithBindings(bindings, required.boolValue());
      });
  c.operation(
      "qualifierByApplyingBindings:", +[](const PropertyValue& r, const Ref<Dictionary>& bindings) {
        return r.as<QXQualifier>()->qualifierByApplyingBindings(bindings);
      });
  c.operation(
      "qualifierByApplyingBindingsAllVariablesRequired:",
      +[](const PropertyValue& r, const Ref<Dictionary>& bindings) {
        return r.as<QXQualifier>()->qualifierByApplyingBindingsAllVariablesRequired(bindings);
      });
  c.operation("bindingKeys", &QXQualifier::bindingKeys);
  c.operation(
      "keyPathForBindingKey:", +[](const PropertyValue& r, const Ref<String>& key) {
        return r.as<QXQualifier>()->keyPathForBindingKey(key);
      });
  detail::addQualifierClassOperations(c);
}

const Class& classObject(detail::Type<QXQualifier>) {
  return detail::buildLibraryClass<QXQualifier>();
}

Ref<QXQualifierVariable> QXQualifierVariable::variableWithKey(StringArg key) {
  return initWithKey(key);
}
Ref<QXQualifierVariable> QXQualifierVariable::initWithKey(StringArg key) {
  return make<QXQualifierVariable>(key);
}
std::string QXQualifierVariable::description() const {
  return "$" + (key_ == nullptr ? "" : key_->utf8());
}

void describe(ClassBuilder<QXQualifierVariable>& c) {
  c.name("QXQualifierVariable")
      .inherits<Object>()
      .archivedBy<detail::QualifierCoding>()
      .property("key", &QXQualifierVariable::key);
  detail::addVariableClassOperations(c);
}

const Class& classObject(detail::Type<QXQualifierVariable>) {
  return detail::buildLibraryClass<QXQualifierVariable>();
}

}  // namespace qx
