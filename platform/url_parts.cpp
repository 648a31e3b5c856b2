#include "platform/url_parts.h"

#include <uriparser/Uri.h>

#include <algorithm>

namespace qx::detail {

bool isValidUrl(std::string_view text) {
  UriUriA parsed;
  const char* faultAt = nullptr;
  const int result =
      uriParseSingleUriExA(&parsed, text.data(), text.data() + text.size(), &faultAt);
  if (result == URI_ERROR_MALLOC) throw std::bad_alloc();
  if (result != URI_SUCCESS) return false;
  uriFreeUriMembersA(&parsed);
  return true;
}

// A colon before all other marks ends a scheme: valid text has it nowhere else there.
UrlParts partsOf(std::string_view text) {
  UrlParts parts;
  const std::size_t mark = std::min(text.find_first_of(":/?#"), text.size());
  std::size_t at = 0;
  if (mark < text.size() && text[mark] == ':') {
    parts.schemeEnd = mark;
    at = mark + 1;
  }
  if (text.substr(at).starts_with("//")) {
    parts.authorityBegin = at + 2;
    at = std::min(text.find_first_of("/?#", at + 2), text.size());
  }
  parts.pathBegin = at;
  parts.pathEnd = std::min(text.find_first_of("?#", at), text.size());
  const std::size_t fragment = std::min(text.find('#', parts.pathEnd), text.size());
  if (parts.pathEnd < fragment) parts.queryBegin = parts.pathEnd + 1;
  parts.queryEnd = fragment;
  if (fragment < text.size()) parts.fragmentBegin = fragment + 1;
  return parts;
}

Ref<URL> UrlAccess::make(std::string text, const UrlParts& parts) {
  return qx::make<URL>(Passkey{}, std::move(text), parts);
}

}  // namespace qx::detail
