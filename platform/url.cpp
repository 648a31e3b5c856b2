#include <QXFoundation/url.h>

#include "frame/hashing.h"
#include "frame/key_text.h"
#include "frame/library_class.h"
#include "frame/raise.h"
#include "platform/path_text.h"
#include "platform/percent_encoding.h"
#include "platform/url_parts.h"
#include "platform/volumes.h"

namespace qx {

using detail::UrlAccess;
using detail::UrlParts;

namespace {

Ref<String> textOf(std::size_t begin, std::string_view part) {
  return begin == UrlParts::kNone ? nullptr : String::fromLatin1(part);
}

std::string fileUrlText(std::string path, bool isDirectory) {
  if (isDirectory && !path.ends_with('/')) path += '/';
  std::string text = "file://";
  text.reserve(text.size() + path.size());
  detail::appendPercentEncoded(text, path, detail::kPathBytes);
  return text;
}

}  // namespace

URL::URL(detail::Passkey, std::string text, const UrlParts& parts)
    : text_(std::move(text)), parts_(parts) {}
URL::~URL() = default;

Ref<URL> URL::URLWithString(StringArg text) {
  if (text.isNil()) return nullptr;
  std::string bytes = detail::pathBytes(text);
  if (!detail::isValidUrl(bytes)) return nullptr;
  const UrlParts parts = detail::partsOf(bytes);
  return UrlAccess::make(std::move(bytes), parts);
}

Ref<URL> URL::fileURLWithPath(StringArg path) { return fileURLWithPath(path, false); }

Ref<URL> URL::fileURLWithPath(StringArg path, bool isDirectory) {
  if (path.isNil()) detail::raiseNil("+[NSURL fileURLWithPath:]");
  std::string bytes = detail::pathBytes(path);
  if (bytes.empty()) return nullptr;
  if (!bytes.starts_with('/')) {
    const std::string folder = detail::volumeSystem().currentDirectory();
    if (!folder.starts_with('/')) return nullptr;
    bytes = detail::joinedPath(folder, bytes);
  }
  std::string text = fileUrlText(std::move(bytes), isDirectory);
  const UrlParts parts = detail::partsOf(text);
  return UrlAccess::make(std::move(text), parts);
}

Ref<String> URL::absoluteString() const { return String::fromLatin1(text_); }

Ref<String> URL::scheme() const {
  return parts_.schemeEnd == UrlParts::kNone
             ? nullptr
             : String::fromLatin1(text().substr(0, parts_.schemeEnd));
}

Ref<String> URL::host() const {
  std::string_view host = UrlAccess::part(*this, parts_.authorityBegin, parts_.pathBegin);
  const std::size_t at = host.rfind('@');
  if (at != std::string_view::npos) host.remove_prefix(at + 1);
  if (host.starts_with('[')) {
    host = host.substr(1, host.find(']') - 1);
  } else {
    host = host.substr(0, host.find(':'));
  }
  return textOf(parts_.authorityBegin, host);
}

Ref<String> URL::query() const {
  return textOf(parts_.queryBegin, UrlAccess::part(*this, parts_.queryBegin, parts_.queryEnd));
}

Ref<String> URL::fragment() const {
  return textOf(parts_.fragmentBegin, UrlAccess::part(*this, parts_.fragmentBegin, text_.size()));
}

std::string URL::fileSystemRepresentation() const {
  std::string_view path = UrlAccess::part(*this, parts_.pathBegin, parts_.pathEnd);
  if (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  return detail::percentDecoded(path);
}

Ref<String> URL::path() const { return String::from(fileSystemRepresentation()); }

bool URL::isFileURL() const {
  constexpr std::string_view kScheme = "file";
  if (parts_.schemeEnd != kScheme.size()) return false;
  for (std::size_t i = 0; i < kScheme.size(); ++i) {
    const auto c = static_cast<unsigned char>(text_[i]);
    if (detail::asciiLower(c) != static_cast<unsigned char>(kScheme[i])) return false;
  }
  return true;
}

bool URL::hasDirectoryPath() const {
  return UrlAccess::part(*this, parts_.pathBegin, parts_.pathEnd).ends_with('/');
}

bool URL::isEqual(const PropertyValue& other) const {
  const auto* url = other.peek<URL>();
  return url != nullptr && url->text_ == text_;
}

std::size_t URL::hash() const { return detail::KeyText(detail::TextSpan::latin1(text_)).hash; }

std::string URL::description() const { return text_; }

Ref<Object> URL::copy() const { return const_cast<URL*>(this); }

void describe(ClassBuilder<URL>& c) {
  c.name("NSURL").inherits<Object>();
  c.property("absoluteString", &URL::absoluteString)
      .property("scheme", &URL::scheme)
      .property("host", &URL::host)
      .property("path", &URL::path)
      .property("query", &URL::query)
      .property("fragment", &URL::fragment);
  c.operation("isFileURL", &URL::isFileURL).operation("hasDirectoryPath", &URL::hasDirectoryPath);
  c.initialisedFromText<&URL::URLWithString>();
}

const Class& classObject(detail::Type<URL>) { return detail::buildLibraryClass<URL>(); }

}  // namespace qx
