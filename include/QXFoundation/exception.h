// The named exceptions for programming errors: bad arguments, broken invariants, abstract
// operations reached.
//
//     try { ... } catch (const qx::InvalidArgumentException& e) { log(e.name(), e.reason()); }
#pragma once

#include <exception>
#include <string>

#include <QXFoundation/constants.h>
#include <QXFoundation/fwd.h>

namespace qx {

// What every raise throws: a name, and a sentence that tells what went wrong.
class QX_EXPORT Exception : public std::exception {
 public:
  // The name lives for ever (a literal); those of the library are in constants.h.
  Exception(const char* name, std::string reason);
  ~Exception() override;
  const char* name() const noexcept { return name_; }
  const std::string& reason() const noexcept { return reason_; }
  // "name: reason"
  const char* what() const noexcept override { return what_.c_str(); }

 private:
  const char* name_;
  std::string reason_;
  std::string what_;
};

// A bad argument: a malformed qualifier format, an empty attribute name, an operation that the
// receiver lacks, nil where an object is needed.
class QX_EXPORT InvalidArgumentException : public Exception {
 public:
  // With the sentence that tells what went wrong.
  explicit InvalidArgumentException(std::string reason)
      : Exception(NSInvalidArgumentException, std::move(reason)) {}
  ~InvalidArgumentException() override;
};

// A broken invariant, such as a lock file that is not the caller's.
class QX_EXPORT InternalInconsistencyException : public Exception {
 public:
  // With the sentence that tells what went wrong.
  explicit InternalInconsistencyException(std::string reason)
      : Exception(NSInternalInconsistencyException, std::move(reason)) {}
  ~InternalInconsistencyException() override;
};

// An index or range outside what it is applied to.
class QX_EXPORT RangeException : public Exception {
 public:
  // With the sentence that tells what went wrong.
  explicit RangeException(std::string reason) : Exception(NSRangeException, std::move(reason)) {}
  ~RangeException() override;
};

// An abstract operation reached, a lock file that can not be removed.
class QX_EXPORT GenericException : public Exception {
 public:
  // With the sentence that tells what went wrong.
  explicit GenericException(std::string reason)
      : Exception(NSGenericException, std::move(reason)) {}
  ~GenericException() override;
};

// Failed substitution of a qualifier's variables. The library substitutes none, and so raises it
// nowhere.
class QX_EXPORT QualifierVariableSubstitutionException : public Exception {
 public:
  // With the sentence that tells what went wrong.
  explicit QualifierVariableSubstitutionException(std::string reason)
      : Exception(QXQualifierVariableSubstitutionException, std::move(reason)) {}
  ~QualifierVariableSubstitutionException() override;
};

}  // namespace qx
