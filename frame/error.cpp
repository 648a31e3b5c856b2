#include <cstring>

#include <QXFoundation/error.h>

#include "frame/hashing.h"
#include "frame/library_class.h"
#include "frame/raise.h"

namespace qx {

Error::Error(detail::Passkey, Ref<String> domain, std::int64_t code, Ref<Dictionary> userInfo)
    : domain_(std::move(domain)), code_(code), userInfo_(std::move(userInfo)) {}

Ref<Error> Error::errorWithDomain(StringArg domain, std::int64_t code, In<Dictionary> userInfo) {
  if (domain.isNil())
    detail::raiseInvalidArgument("+[NSError errorWithDomain:code:userInfo:]: the domain is nil");
  Ref<Object> info = userInfo ? userInfo->copy() : Ref<Object>(Dictionary::init());
  return make<Error>(detail::Passkey{}, domain.string(), code,
                     PropertyValue(info).as<Dictionary>());
}

Ref<Error> Error::posixError(int code) {
  char buffer[256] = "";
  const char* text = strerror_r(code, buffer, sizeof buffer);
  return errorWithDomain(NSPOSIXErrorDomain, code, dict({{NSLocalizedDescriptionKey, text}}));
}

std::string Error::localizedDescription() const {
  const PropertyValue text = userInfo_->objectForKey(NSLocalizedDescriptionKey);
  if (text.isString()) return text.description();
  return "The operation could not be completed (" + domain_->utf8() + " error " +
         std::to_string(code_) + ").";
}

bool Error::isEqual(const PropertyValue& other) const {
  const auto* e = other.peek<Error>();
  return e != nullptr && e->code_ == code_ && e->domain_->isEqualToString(domain_) &&
         e->userInfo_->isEqualToDictionary(userInfo_);
}
std::size_t Error::hash() const {
  return detail::combineHashes(domain_->hash(), static_cast<std::uint64_t>(code_));
}

std::string Error::description() const {
  return "Error Domain=" + domain_->utf8() + " Code=" + std::to_string(code_) + " \"" +
         localizedDescription() + "\"";
}
Ref<Object> Error::copy() const { return const_cast<Error*>(this); }

void describe(ClassBuilder<Error>& c) {
  c.name("NSError").inherits<Object>();
  c.property("domain", &Error::domain)
      .property("code", &Error::code)
      .property("userInfo", &Error::userInfo);
  c.property("localizedDescription", &Error::localizedDescription);
}

const Class& classObject(detail::Type<Error>) { return detail::buildLibraryClass<Error>(); }

}  // namespace qx
