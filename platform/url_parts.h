#pragma once

// URLs inside the library: their parts, and making one of text that is known to be valid.

#include <string>
#include <string_view>

#include <QXFoundation/url.h>

namespace qx::detail {

// By RFC 3986, relative references included.
bool isValidUrl(std::string_view text);

// Precondition: the text is valid.
UrlParts partsOf(std::string_view text);

struct UrlAccess {
  static const UrlParts& parts(const URL& url) { return url.parts_; }
  // The text between two places, empty where the first is missing.
  static std::string_view part(const URL& url, std::size_t begin, std::size_t end) {
    if (begin == UrlParts::kNone) return {};
    return std::string_view(url.text_).substr(begin, end - begin);
  }
  // Precondition: the text is valid, and these are its parts.
  static Ref<URL> make(std::string text, const UrlParts& parts);
};

}  // namespace qx::detail
