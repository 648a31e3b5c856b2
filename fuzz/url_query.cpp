// An arbitrary URL whose query is edited: what stays keeps its bytes and its order, what is added
// is found at the end, and the rest of the URL is as it was.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/url_query.h>

#include "frame/utf.h"
#include "platform/percent_encoding.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

// A URL's text, taken apart by its first "#" and the first "?" before it.
struct Split {
  explicit Split(std::string_view text) {
    const std::size_t hash = std::min(text.find('#'), text.size());
    fragment = text.substr(hash);
    const std::size_t mark = std::min(text.find('?'), hash);
    before = text.substr(0, mark);
    if (mark == hash || mark + 1 == hash) return;
    for (std::size_t start = mark + 1; start <= hash;) {
      const std::size_t end = std::min(text.find('&', start), hash);
      items.push_back(text.substr(start, end - start));
      start = end + 1;
    }
  }
  std::string_view before, fragment;
  std::vector<std::string_view> items;
};

bool isNamed(std::string_view item, const std::string& name) {
  return qx::detail::percentDecoded(item.substr(0, item.find('='))) == name;
}

void checkParameters(const qx::Ref<qx::URL>& url, const std::string& name,
                     const std::string& value) {
  const auto parameters = qx::MutableDictionary::init();
  parameters->setValueForKey(qx::String::from(value), qx::String::from(name));
  const auto edited = qx::URLByAppendingQueryParameters(url, parameters);
  require(qx::URL::URLWithString(std::string(edited->text())) != nullptr);
  const Split before(url->text());
  const Split after(edited->text());
  require(before.before == after.before && before.fragment == after.fragment);
  std::vector<std::string_view> kept;
  for (const std::string_view item : before.items) {
    if (!isNamed(item, name)) kept.push_back(item);
  }
  require(after.items.size() == kept.size() + 1);
  require(std::equal(kept.begin(), kept.end(), after.items.begin()));
  const std::string_view added = after.items.back();
  require(isNamed(added, name));
  require(qx::detail::percentDecoded(added.substr(added.find('=') + 1)) == value);
}

void checkString(const qx::Ref<qx::URL>& url, const std::string& query) {
  const auto edited = qx::URLByAppendingQueryString(url, query);
  if (query.empty()) require(edited.get() == url.get());
  if (edited == nullptr) return;
  require(edited->text().substr(0, url->text().size()) == url->text());
  require(edited->text().size() == url->text().size() + query.size() + (query.empty() ? 0 : 1));
}

}  // namespace

// Three lines: a URL, the name of a parameter, and its value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  if (!qx::detail::isValidUtf8(input)) return 0;
  const std::size_t first = std::min(input.find('\n'), input.size());
  const std::size_t second = std::min(input.find('\n', first + 1), input.size());
  const auto url = qx::URL::URLWithString(std::string(input.substr(0, first)));
  if (url == nullptr || first == input.size() || second == input.size()) return 0;
  const std::string name(input.substr(first + 1, second - first - 1));
  const std::string value(input.substr(second + 1));
  checkParameters(url, name, value);
  checkString(url, value);
  return 0;
}
