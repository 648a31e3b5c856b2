// Error: the record of a failure that came from the outside world (files, attributes, system
// calls).
//
//     qx::Ref<qx::Error> error;
//     if (!doSomething(path, &error)) show(error->localizedDescription());
#pragma once

#include <cstdint>
#include <string>

#include <QXFoundation/constants.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/object.h>
#include <QXFoundation/string.h>

namespace qx {

// Operations that can fail take `Ref<Error>* error = nullptr`; it is filled on failure alone, and
// may be absent. Domains and keys of the user information are in constants.h. The class is
// "NSError". Immutable, thread-safe.
class QX_EXPORT Error : public Object {
 public:
  // A nil user information counts as empty; a nil domain raises.
  static Ref<Error> errorWithDomain(StringArg domain, std::int64_t code, In<Dictionary> userInfo);
  // Domain NSPOSIXErrorDomain; the description is the system's sentence for the code.
  static Ref<Error> posixError(int code);

  // The kind of failure, its code within that kind, and what else is known; never nil.
  const Ref<String>& domain() const { return domain_; }
  std::int64_t code() const { return code_; }
  const Ref<Dictionary>& userInfo() const { return userInfo_; }
  // The sentence of the user information; without one a plain text of domain and code.
  std::string localizedDescription() const;

  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  std::string description() const override;
  Ref<Object> copy() const override;

  // Inside the library.
  Error(detail::Passkey, Ref<String> domain, std::int64_t code, Ref<Dictionary> userInfo);

 private:
  Ref<String> domain_;
  std::int64_t code_;
  Ref<Dictionary> userInfo_;
};

QX_EXPORT const Class& classObject(detail::Type<Error>);

namespace detail {
// Fills an error place, where there is one.
inline void fill(Ref<Error>* place, Ref<Error> error) {
  if (place != nullptr) *place = std::move(error);
}
}  // namespace detail

}  // namespace qx
