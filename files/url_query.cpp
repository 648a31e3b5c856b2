#include <algorithm>
#include <cstring>

#include <QXFoundation/url_query.h>

#include "files/added_operations.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "frame/utf.h"
#include "platform/path_text.h"
#include "platform/percent_encoding.h"
#include "platform/url_parts.h"

namespace qx {

using detail::UrlAccess;
using detail::UrlParts;

namespace {

constexpr char kOperation[] = "-[NSURL(NSURL_extensions) URLByAppendingQueryParameters:]";

// Up to this many parameters are compared one by one, more are looked up.
constexpr std::size_t kFew = 8;

// Whether the name of a parameter is this text, which is ASCII.
bool isText(const String& name, std::string_view ascii) {
  const detail::TextSpan span = detail::StringStorage::span(name);
  return !span.wide && span.size == ascii.size() &&
         std::memcmp(span.data, ascii.data(), ascii.size()) == 0;
}

// Whether an item of the query has the name of a parameter. Encoded bytes that are no UTF-8 are no
// name.
bool isNamed(const Dictionary& parameters, std::string_view written) {
  if (written.find('%') != std::string_view::npos) {
    const std::string name = detail::percentDecoded(written);
    return detail::isValidUtf8(name) && parameters.find(name) != nullptr;
  }
  if (parameters.count() > kFew) return parameters.find(written) != nullptr;
  for (const auto& [name, value] : parameters) {
    if (isText(name, written)) return true;
  }
  return false;
}

// The query of a URL while it is put together.
class QueryText {
 public:
  explicit QueryText(std::string_view before, std::size_t room) {
    text_.reserve(before.size() + room);
    text_.append(before);
  }

  void keep(std::string_view item) {
    part();
    text_.append(item);
  }
  void add(const String& name, const String& value) {
    part();
    appendEncoded(name);
    text_ += '=';
    appendEncoded(value);
  }
  std::string& text() { return text_; }

 private:
  void part() {
    text_ += isFirst_ ? '?' : '&';
    isFirst_ = false;
  }
  void appendEncoded(const String& string) {
    const detail::TextSpan span = detail::StringStorage::span(string);
    const bool isAscii = !span.wide && detail::asciiPrefix(span.latin1View()) == span.size;
    if (isAscii) {
      detail::appendPercentEncoded(text_, span.latin1View(), detail::kQueryItemBytes);
    } else {
      detail::appendPercentEncoded(text_, string.utf8(), detail::kQueryItemBytes);
    }
  }

  std::string text_;
  bool isFirst_ = true;
};

// An empty query has no items; "&" parts items, of which any may be empty.
void keepOtherItems(QueryText& out, std::string_view query, const Dictionary& parameters) {
  if (query.empty()) return;
  for (std::size_t start = 0; start <= query.size();) {
    const std::size_t end = std::min(query.find('&', start), query.size());
    const std::string_view item = query.substr(start, end - start);
    start = end + 1;
    if (!isNamed(parameters, item.substr(0, item.find('=')))) out.keep(item);
  }
}

void addItems(QueryText& out, const Dictionary& parameters) {
  for (const auto& [name, value] : parameters) {
    const auto* text = value.peek<String>();
    if (text == nullptr) {
      detail::raiseInvalidArgument(std::string(kOperation) + ": the value of \"" + name.utf8() +
                                   "\" is no string");
    }
    out.add(name, *text);
  }
}

}  // namespace

Ref<URL> URLByAppendingQueryString(In<URL> url, StringArg query) {
  if (!url) return nullptr;
  const std::string added = detail::pathBytes(query);
  if (added.empty()) return Ref<URL>(url.get());
  const bool hasQuery = UrlAccess::parts(*url).queryBegin != UrlParts::kNone;
  return URL::URLWithString(std::string(url->text()) + (hasQuery ? '&' : '?') + added);
}

// What is kept was valid, and what is added is encoded, so that the result needs no check.
Ref<URL> URLByAppendingQueryParameters(In<URL> url, In<Dictionary> parameters) {
  if (!url) return nullptr;
  if (!parameters || parameters->count() == 0) return Ref<URL>(url.get());
  UrlParts parts = UrlAccess::parts(*url);
  const std::string_view text = url->text();
  const std::string_view fragment = text.substr(parts.queryEnd);
  QueryText out(text.substr(0, parts.pathEnd),
                text.size() - parts.pathEnd + 32 * parameters->count());
  keepOtherItems(out, UrlAccess::part(*url, parts.queryBegin, parts.queryEnd), *parameters);
  addItems(out, *parameters);
  parts.queryBegin = parts.pathEnd + 1;
  parts.queryEnd = out.text().size();
  out.text().append(fragment);
  if (!fragment.empty()) parts.fragmentBegin = parts.queryEnd + 1;
  return UrlAccess::make(std::move(out.text()), parts);
}

namespace detail {

using Value = const PropertyValue&;

void addUrlOperations(ClassBuilderBase& c) {
  c.addFunction(
      "URLByAppendingQueryString:", +[](Value r, const Ref<String>& query) {
        return URLByAppendingQueryString(r.as<URL>(), query);
      });
  c.addFunction(
      "URLByAppendingQueryParameters:", +[](Value r, const Ref<Dictionary>& parameters) {
        return URLByAppendingQueryParameters(r.as<URL>(), parameters);
      });
}

}  // namespace detail
}  // namespace qx
