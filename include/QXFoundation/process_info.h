// ProcessInfo: what a program can ask about the process it runs in.
//
//     auto arguments = qx::ProcessInfo::processInfo()->arguments();   // first the executable
#pragma once

#include <string>

#include <QXFoundation/array.h>
#include <QXFoundation/object.h>

namespace qx {

// The process's information. The class is "NSProcessInfo". The one of the system is immutable and
// thread-safe.
class QX_EXPORT ProcessInfo : public Object {
 public:
  // The current information: the system's, or what setProcessInfo put in its place. Never nil.
  static Ref<ProcessInfo> processInfo();
  // Puts another information in the place of the system's, for tests; nil brings the system's back.
  // Thread-safe, but what was read from the one before stays with who read it.
  static void setProcessInfo(In<ProcessInfo> info);

  // The command line as strings, in order, the executable's path as it was called first. Arguments
  // that are no UTF-8 have U+FFFD for what is ill-formed. Empty where the system does not tell.
  virtual Ref<Array> arguments() const = 0;
  // The last component of the first argument; empty when there are no arguments.
  virtual std::string processName() const;

 protected:
  ProcessInfo() = default;
  ~ProcessInfo() override;
};

QX_EXPORT const Class& classObject(detail::Type<ProcessInfo>);

}  // namespace qx
