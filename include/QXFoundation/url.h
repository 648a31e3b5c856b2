// URL: a uniform resource locator, valid by RFC 3986.
//
//     auto page = qx::URL::URLWithString("http://example.com/p?a=1");   // nil where that is no URL
//     auto file = qx::URL::fileURLWithPath("/home/bob/a b");            // file:///home/bob/a%20b
//     file->path();                                                     // "/home/bob/a b"
//
// A URL is ASCII text; everything else is percent-encoded in it. Relative references are URLs too;
// there is no base to resolve them against.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <QXFoundation/error.h>
#include <QXFoundation/object.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>

namespace qx {

// Key of a resource value, a bool: the file is to be kept out of backups.
inline constexpr char NSURLIsExcludedFromBackupKey[] = "NSURLIsExcludedFromBackupKey";

namespace detail {
// Where the parts of a URL stand in its text.
struct UrlParts {
  static constexpr std::size_t kNone = ~std::size_t{0};
  std::size_t schemeEnd = kNone;       // the colon
  std::size_t authorityBegin = kNone;  // behind the two slashes
  std::size_t pathBegin = 0;
  std::size_t pathEnd = 0;
  std::size_t queryBegin = kNone;  // behind the question mark
  std::size_t queryEnd = 0;
  std::size_t fragmentBegin = kNone;  // behind the number sign
};
struct UrlAccess;
}  // namespace detail

// The class is "NSURL". Immutable, thread-safe.
class QX_EXPORT URL : public Object {
 public:
  // The text as it stands, nothing encoded or resolved; nil for nil, and for text that is no URI or
  // relative reference.
  static Ref<URL> URLWithString(StringArg text);
  // The file URL of a path, of any bytes. A relative path starts at the current directory. "." and
  // ".." stay. Ends with a slash where the path does, or where `isDirectory` asks for it; what
  // exists is not looked at. Nil for the empty path, and for a relative one where the current
  // directory is not known; nil as path raises InvalidArgumentException.
  static Ref<URL> fileURLWithPath(StringArg path);
  static Ref<URL> fileURLWithPath(StringArg path, bool isDirectory);

  // The whole text.
  Ref<String> absoluteString() const;
  // The same, borrowed from the object.
  std::string_view text() const { return text_; }
  // The parts as they are written, without the marks around them; nil where a part is missing.
  Ref<String> scheme() const;
  Ref<String> host() const;  // of brackets around an address, what is between them
  Ref<String> query() const;
  Ref<String> fragment() const;
  // The path with percent-encoding undone and without a slash at its end. Bytes that are no UTF-8
  // show as U+FFFD.
  Ref<String> path() const;
  // The bytes of that path, for calls of the system.
  std::string fileSystemRepresentation() const;
  // Whether the scheme is "file", in any case.
  bool isFileURL() const;
  bool hasDirectoryPath() const;  // a slash ends the path

  // Stores a property of the file. There is one, NSURLIsExcludedFromBackupKey: true keeps the file
  // out of backups by the extended attribute "user.xdg.robots.backup" with the text "false", and by
  // the no-dump flag where the file system has one; false takes both away. False and an error for
  // another key or kind of value, a URL that is no file URL, and where the system refuses.
  bool setResourceValue(const PropertyValue& value, StringArg forKey,
                        Ref<Error>* error = nullptr) const;
  // Reads it into `value`; false and an error as above.
  bool getResourceValue(PropertyValue* value, StringArg forKey, Ref<Error>* error = nullptr) const;

  // By text.
  bool isEqual(const PropertyValue& other) const override;
  std::size_t hash() const override;
  // The text.
  std::string description() const override;
  Ref<Object> copy() const override;

  // Inside the library.
  URL(detail::Passkey, std::string text, const detail::UrlParts& parts);

 protected:
  ~URL() override;

 private:
  friend struct detail::UrlAccess;
  std::string text_;
  detail::UrlParts parts_;
};

QX_EXPORT const Class& classObject(detail::Type<URL>);

}  // namespace qx
