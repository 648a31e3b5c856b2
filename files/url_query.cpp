#include <cstring>

#include <QXFoundation/url_query.h>

#include "files/added_operations.h"
#include "frame/dictionary_storage.h"
#include "frame/raise.h"
#include "frame/string_storage.h"
#include "frame/utf.h"
#include "platform/path_text.h"
#include "platform/percent_encoding.h"
#include "platform/stack_text.h"
#include "platform/url_parts.h"

namespace qx {

using detail::DictionaryStorage;
using detail::StackText;
using detail::StringStorage;
using detail::UrlAccess;
using detail::UrlParts;

namespace {

constexpr char kOperation[] = "-[NSURL(NSURL_extensions) URLByAppendingQueryParameters:]";

// Calls visit(name, value) for the entries of a dictionary, in order.
template <class Visit>
void forEachEntry(const Dictionary& d, Visit visit) {
  const detail::Shape& shape = DictionaryStorage::shape(d);
  const PropertyValue* values = DictionaryStorage::values(d);
  for (std::size_t slot = 0; slot < shape.slots(); ++slot) {
    if (const String* name = shape.key(slot).get()) visit(*name, values[slot]);
  }
}

// The names of parameters, by which items of a query are looked up.
class ParameterNames {
 public:
  explicit ParameterNames(const Dictionary& parameters)
      : parameters_(parameters), isFew_(parameters.count() <= kFew) {
    if (!isFew_) return;
    forEachEntry(parameters, [this](const String& name, const PropertyValue&) {
      const detail::TextSpan span = StringStorage::span(name);
      if (!span.wide) narrow_[count_++] = span.latin1View();
    });
  }

  // Whether an item has the name of a parameter. Encoded bytes that are no UTF-8 are no name.
  bool hold(std::string_view written, bool isEncoded) const {
    if (!isEncoded && isFew_) return holdText(written);
    if (!isEncoded) return parameters_.find(written) != nullptr;
    const std::string name = detail::percentDecoded(written);
    return detail::isValidUtf8(name) && parameters_.find(name) != nullptr;
  }

 private:
  // Up to this many are compared one by one, more are looked up.
  static constexpr std::size_t kFew = 8;

  // The text is ASCII.
  bool holdText(std::string_view ascii) const {
    for (std::size_t i = 0; i < count_; ++i) {
      if (narrow_[i] == ascii) return true;
    }
    return false;
  }

  const Dictionary& parameters_;
  bool isFew_;
  std::size_t count_ = 0;
  std::string_view narrow_[kFew];
};

// The query of a URL while it is put together.
class QueryText {
 public:
  // One item, or several as they stand between the marks.
  void keep(std::string_view items) {
    char* out = part(text_.room(items.size() + 1));
    std::memcpy(out, items.data(), items.size());
    text_.commit(out + items.size());
  }
  void add(const String& name, const String& value) {
    text_.commit(part(text_.room(1)));
    appendEncoded(name);
    text_.append("=");
    appendEncoded(value);
  }
  StackText& text() { return text_; }

 private:
  char* part(char* out) {
    *out = isFirst_ ? '?' : '&';
    isFirst_ = false;
    return out + 1;
  }
  void appendEncoded(const String& string) {
    const detail::TextSpan span = StringStorage::span(string);
    const bool isAscii = !span.wide && detail::asciiPrefix(span.latin1View()) == span.size;
    if (isAscii) {
      appendEncoded(span.latin1View());
    } else {
      appendEncoded(string.utf8());
    }
  }
  void appendEncoded(std::string_view bytes) {
    char* out = text_.room(3 * bytes.size());
    text_.commit(detail::writePercentEncoded(out, bytes, detail::kQueryItemBytes));
  }

  StackText text_;
  bool isFirst_ = true;
};

// One item of a query. "&" parts items, of which any may be empty.
struct QueryItem {
  explicit QueryItem(const char* from, const char* queryEnd) {
    const char* at = from;
    for (; at != queryEnd && *at != '&' && *at != '='; ++at) isEncoded |= *at == '%';
    name = {from, static_cast<std::size_t>(at - from)};
    while (at != queryEnd && *at != '&') ++at;
    end = at;
  }

  std::string_view name;
  bool isEncoded = false;
  const char* end;
};

// What stays side by side is kept at once. An empty query has no items.
void keepOtherItems(QueryText& out, std::string_view query, const Dictionary& parameters) {
  if (query.empty()) return;
  const ParameterNames names(parameters);
  const char* const queryEnd = query.data() + query.size();
  const char* kept = query.data();  // what is to be kept, and not written yet, begins here
  const auto keepUntil = [&](const char* end) {
    if (kept <= end) out.keep({kept, static_cast<std::size_t>(end - kept)});
  };
  for (const char* at = kept; at <= queryEnd;) {
    const QueryItem item(at, queryEnd);
    if (names.hold(item.name, item.isEncoded)) {
      keepUntil(at - 1);
      kept = item.end + 1;
    }
    at = item.end + 1;
  }
  keepUntil(queryEnd);
}

void addItems(QueryText& out, const Dictionary& parameters) {
  forEachEntry(parameters, [&out](const String& name, const PropertyValue& value) {
    if (!value.isString()) {
      detail::raiseInvalidArgument(std::string(kOperation) + ": the value of \"" + name.utf8() +
                                   "\" is no string");
    }
    out.add(name, static_cast<const String&>(*value.object()));
  });
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
  QueryText out;
  out.text().append(text.substr(0, parts.pathEnd));
  keepOtherItems(out, UrlAccess::part(*url, parts.queryBegin, parts.queryEnd), *parameters);
  addItems(out, *parameters);
  parts.queryBegin = parts.pathEnd + 1;
  parts.queryEnd = out.text().size();
  out.text().append(fragment);
  if (!fragment.empty()) parts.fragmentBegin = parts.queryEnd + 1;
  return UrlAccess::make(std::string(out.text().view()), parts);
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
