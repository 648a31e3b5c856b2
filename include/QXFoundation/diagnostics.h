// Diagnostics: debug messages that say where they come from, debug switches of the command line,
// and loud failure where an abstract operation is reached.
//
//     if (qx::QXDebugSet("net"))                            // program --QXDebug=net
//       log(QX_DEBUG_FUNCTION_MSG("connected"));  // "File net.cpp: 12. In open connected"
//
//     void Shape::draw() const { qx::subclassResponsibility(this, "draw"); }
//
// The messages are built and returned; nothing here logs or prints.
#pragma once

#include <QXFoundation/object.h>
#include <QXFoundation/process_info.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

namespace qx {

// False for nil and for class objects, true for every other value.
QX_EXPORT bool QXObjCIsInstance(const PropertyValue& object);

// "File FILE: LINE. In FUNCTION MESSAGE". Null names and a nil message show as "(null)".
QX_EXPORT Ref<String> QXDebugFunctionMsg(const char* function, const char* file, int line,
                                         StringArg message);

// "File FILE: LINE. In [CLASS -SELECTOR] MESSAGE", with "+" instead of "-" for a class object and
// for nil, whose class shows as "(null)", as does the null selector.
QX_EXPORT Ref<String> QXDebugMethodMsg(const PropertyValue& object, Selector selector,
                                       const char* file, int line, StringArg message);
inline Ref<String> QXDebugMethodMsg(const Object* object, Selector selector, const char* file,
                                    int line, StringArg message) {
  return QXDebugMethodMsg(PropertyValue(const_cast<Object*>(object)), selector, file, line,
                          message);
}

// The two messages with the place where the macro stands.
#define QX_DEBUG_FUNCTION_MSG(message) \
  (::qx::QXDebugFunctionMsg(__func__, __FILE__, __LINE__, (message)))
// The same of a method: its object, its selector, the message.
#define QX_DEBUG_METHOD_MSG(object, selector, message) \
  (::qx::QXDebugMethodMsg((object), (selector), __FILE__, __LINE__, (message)))

// The debug switches of the process: what follows "--QXDebug=" in each argument that begins so, as
// one name each (there is no separator). Built by the first call, from the information given, and
// never again; later calls give the same set. Nil gives nil. The set belongs to the process; who
// changes it does so before other threads ask.
QX_EXPORT Ref<MutableSet> debugSet(In<ProcessInfo> processInfo);

// True when the name is one of the debug switches; the first call builds their set from the current
// process information. Nil gives false.
QX_EXPORT bool QXDebugSet(StringArg name);

// Raise GenericException, "method SELECTOR not implemented in CLASS (instance)" and "subclass
// CLASS(instance) should override SELECTOR"; "class" instead of "instance" for a class object and
// for nil, "(null)" for the null selector. Every object performs them by selector too, with the
// selector's name as a string.
[[noreturn]] QX_EXPORT void notImplemented(const PropertyValue& receiver, Selector selector);
[[noreturn]] QX_EXPORT void subclassResponsibility(const PropertyValue& receiver,
                                                   Selector selector);
[[noreturn]] inline void notImplemented(const Object* receiver, Selector selector) {
  notImplemented(PropertyValue(const_cast<Object*>(receiver)), selector);
}
[[noreturn]] inline void subclassResponsibility(const Object* receiver, Selector selector) {
  subclassResponsibility(PropertyValue(const_cast<Object*>(receiver)), selector);
}

}  // namespace qx
