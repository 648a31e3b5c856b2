#include <string>

#include <QXFoundation/class.h>
#include <QXFoundation/diagnostics.h>
#include <QXFoundation/exception.h>

#include "frame/diagnostic_operations.h"

namespace qx {
namespace {

constexpr char kNothing[] = "(null)";

const char* orNothing(const char* text) { return text == nullptr ? kNothing : text; }

std::string nameOf(Selector selector) {
  return selector.isNull() ? kNothing : std::string(selector.text());
}

// The class an object stands for: a class object stands for itself.
const char* classNameOf(const PropertyValue& object) {
  const Class* cls = object.cls();
  if (cls != nullptr && !QXObjCIsInstance(object)) cls = static_cast<const Class*>(object.object());
  return cls == nullptr ? kNothing : cls->name();
}

const char* kindOf(const PropertyValue& receiver) {
  return QXObjCIsInstance(receiver) ? "instance" : "class";
}

std::string placeOf(const char* file, int line) {
  return std::string("File ") + orNothing(file) + ": " + std::to_string(line) + ". In ";
}

// Joined as strings: a message may hold what UTF-8 does not.
Ref<String> withMessage(const std::string& place, StringArg message) {
  const StringArg shown = message.isNil() ? StringArg(kNothing) : message;
  return String::from(place + " ")->stringByAppendingString(shown);
}

}  // namespace

bool QXObjCIsInstance(const PropertyValue& object) {
  const Object* o = object.object();
  if (o == nullptr) return !object.isNil();
  return detail::ObjectAccess::kind(*o) != detail::ObjectKind::cls;
}

Ref<String> QXDebugFunctionMsg(const char* function, const char* file, int line,
                               StringArg message) {
  return withMessage(placeOf(file, line) + orNothing(function), message);
}

Ref<String> QXDebugMethodMsg(const PropertyValue& object, Selector selector, const char* file,
                             int line, StringArg message) {
  const char* marker = QXObjCIsInstance(object) ? " -" : " +";
  return withMessage(
      placeOf(file, line) + "[" + classNameOf(object) + marker + nameOf(selector) + "]", message);
}

void notImplemented(const PropertyValue& receiver, Selector selector) {
  throw GenericException("method " + nameOf(selector) + " not implemented in " +
                         classNameOf(receiver) + " (" + kindOf(receiver) + ")");
}

void subclassResponsibility(const PropertyValue& receiver, Selector selector) {
  throw GenericException(std::string("subclass ") + classNameOf(receiver) + "(" + kindOf(receiver) +
                         ") should override " + nameOf(selector));
}

namespace detail {
namespace {

template <void (*Raise)(const PropertyValue&, Selector)>
void raiseByName(const PropertyValue& receiver, const Ref<String>& selector) {
  Raise(receiver, Selector::named(selector));
}

}  // namespace

void addDiagnosticOperations(ClassBuilderBase& builder) {
  builder.addFunction("notImplemented:", &raiseByName<&notImplemented>);
  builder.addFunction("subclassResponsibility:", &raiseByName<&subclassResponsibility>);
}

}  // namespace detail
}  // namespace qx
