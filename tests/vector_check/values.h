#pragma once

// Values and qualifiers in the form of the cases. JSON integers are integers, numbers with a point
// are doubles, and both stay what they are in every comparison.

#include <nlohmann/json.hpp>
#include <string>

#include <QXFoundation/QXFoundation.h>

namespace vector_check {

using json = nlohmann::ordered_json;

// Equal and of the same kinds throughout: 1, 1.0 and true differ; the order of an object's entries
// does not count.
bool isSame(const json& a, const json& b);

// Plain form: null is the null object; nil does not occur.
qx::PropertyValue plainValue(const json& j);
json plainJson(const qx::PropertyValue& v);

// Typed form: JSON null is nil, {"s"}, {"i"}, {"f"} (single precision), {"obj"}.
qx::PropertyValue typedValue(const json& j);
json typedJson(const qx::PropertyValue& v);

// Slot: [v] is present, [] is absent.
qx::PropertyValue slotValue(const json& j);

// Text or nil.
qx::PropertyValue textOrNil(const json& j);

// Qualifiers: ["kv",key,op,TV], ["kc",left,op,right], ["not",Q], ["and",[Q...]], ["or",[Q...]];
// null is none.
qx::Ref<qx::QXQualifier> qualifier(const json& j);
json qualifierJson(const qx::Ref<qx::QXQualifier>& q);
json operatorJson(qx::Selector selector);
// From "qualifier", or from "format" with "arguments" [[letter, value]...].
qx::Ref<qx::QXQualifier> qualifierOf(const json& args);
qx::Ref<qx::QXQualifier> parsed(const json& format, const json& arguments);

// The expected tree in the form that qualifierJson gives: texts of instances as the class writes
// them.
json normalized(json expected);

}  // namespace vector_check
