#include <algorithm>

#include <QXFoundation/class.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/string.h>

#include "frame/class_record.h"
#include "frame/operation_call.h"
#include "frame/raise.h"

namespace qx {

Exception::Exception(const char* name, std::string reason)
    : name_(name), reason_(std::move(reason)), what_(std::string(name) + ": " + reason_) {}

// Out of line, so that the type information of each class stands once.
Exception::~Exception() = default;
InvalidArgumentException::~InvalidArgumentException() = default;
InternalInconsistencyException::~InternalInconsistencyException() = default;
RangeException::~RangeException() = default;
GenericException::~GenericException() = default;
QualifierVariableSubstitutionException::~QualifierVariableSubstitutionException() = default;

namespace detail {

void raiseInvalidArgument(std::string reason) { throw InvalidArgumentException(std::move(reason)); }

void raiseNil(const char* where) {
  raiseInvalidArgument(std::string("nil was used as an object in ") + where);
}

namespace {

// "-[Person greet:]: ", with a plus for an operation of a class.
std::string nameOf(const PropertyValue& receiver, Selector selector) {
  const Object* object = receiver.object();
  const bool isClass = object != nullptr && ObjectAccess::kind(*object) == ObjectKind::cls;
  const Class* cls = isClass ? static_cast<const Class*>(object) : receiver.cls();
  std::string name = isClass ? "+[" : "-[";
  name += cls == nullptr ? "nil" : cls->name();
  name += ' ';
  name += selector.isNull() ? "(null)" : selector.text();
  return name + "]: ";
}

}  // namespace

void raiseUnsupported(const PropertyValue& receiver, Selector selector) {
  raiseInvalidArgument(nameOf(receiver, selector) + "the receiver has no such operation");
}

KindException::~KindException() = default;

void raiseWithin(const PropertyValue& receiver, Selector selector, const KindException& refused) {
  raiseInvalidArgument(nameOf(receiver, selector) + refused.reason());
}

void raiseNotSettable(const Class& cls, StringArg key) {
  raiseInvalidArgument(std::string("-[") + cls.name() +
                       " setValue:forKey:]: there is no property \"" + key.utf8() +
                       "\" that can be set");
}

void raiseIndex(const char* operation, std::size_t index, std::size_t count) {
  throw RangeException(std::string(operation) + ": index " + std::to_string(index) +
                       " is beyond the count " + std::to_string(count));
}

void raiseRange(const char* operation, std::size_t location, std::size_t length,
                std::size_t count) {
  throw RangeException(std::string(operation) + ": the range of " + std::to_string(length) +
                       " from " + std::to_string(location) + " leaves the length " +
                       std::to_string(count));
}

void raiseNilStored(const char* operation) {
  raiseInvalidArgument(std::string(operation) + ": nil can not be stored");
}

void raiseTooLong(const char* what) {
  raiseInvalidArgument(std::string(what) + " is longer than the value model holds");
}

namespace {

// Enough of a value to know it by in a reason: texts and numbers are shown, everything else is its
// class. Runs no code of the application.
std::string shown(const PropertyValue& v) {
  if (v.isNil()) return "nil";
  constexpr std::size_t kMost = 80;
  std::string text = std::string("a value of class ") + v.cls()->name();
  if (v.isString()) {
    const auto* s = static_cast<const String*>(v.object());
    text += " (" + s->substringToIndex(std::min(s->length(), kMost))->utf8();
    text += s->length() > kMost ? "...)" : ")";
  } else if (v.isNumber() && (v.object() == nullptr || v.object()->cls().record().ofLibrary)) {
    text += " (" + v.description() + ")";
  }
  return text;
}

}  // namespace

void raiseKind(const char* wanted, const PropertyValue& got) {
  throw KindException(shown(got) + " can not stand for " + wanted);
}

void raiseUnfit(const Class& cls, StringArg key, const Taken& taken, const PropertyValue& got) {
  raiseInvalidArgument(std::string("-[") + cls.name() + " setValue:forKey:]: the property \"" +
                       key.utf8() + "\" does not take " + shown(got) + ", only " + taken.wanted());
}

}  // namespace detail
}  // namespace qx
