// Query parameters as another library reads them.

#include <gtest/gtest.h>
#include <uriparser/Uri.h>

#include <optional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/url_query.h>

#include "tests/support/random_urls.h"

namespace qx {
namespace {

constexpr int kUrls = 4000;

// A name and its value, none where there is no "=".
using Item = std::pair<std::string, std::optional<std::string>>;
using Items = std::vector<Item>;

// The peer passes over items that are empty. "+" stays one, as it does in the library.
Items itemsOf(const Ref<URL>& url) {
  const auto query = url->query();
  if (query == nullptr) return {};
  const std::string text = query->utf8();
  UriQueryListA* list = nullptr;
  int count = 0;
  EXPECT_EQ(uriDissectQueryMallocExA(&list, &count, text.data(), text.data() + text.size(),
                                     URI_FALSE, URI_BR_DONT_TOUCH),
            URI_SUCCESS);
  Items items;
  for (const UriQueryListA* at = list; at != nullptr; at = at->next) {
    items.emplace_back(at->key,
                       at->value == nullptr ? std::nullopt : std::optional<std::string>(at->value));
  }
  EXPECT_EQ(items.size(), static_cast<std::size_t>(count));
  uriFreeQueryListA(list);
  return items;
}

// What the parameters make of the items, by the peer's reading of both.
void expectMerged(const std::string& text, const Items& added) {
  const auto url = URL::URLWithString(text);
  ASSERT_TRUE(url != nullptr) << text;
  const auto parameters = MutableDictionary::init();
  for (const auto& [name, value] : added) parameters->setObject(*value, name);
  Items expected;
  for (Item& item : itemsOf(url)) {
    if (parameters->objectForKey(item.first).isNil()) expected.push_back(std::move(item));
  }
  expected.insert(expected.end(), added.begin(), added.end());
  const auto merged = URLByAppendingQueryParameters(url, parameters);
  EXPECT_EQ(itemsOf(merged), expected) << text << " became " << merged->text();
}

TEST(QueryPeers, ReadWhatParametersMake) {
  const char* const texts[] = {"http://h/p",
                               "http://h/p?",
                               "http://h/p?a=1&b=2&a=3",
                               "http://h?a",
                               "p?a=b=c&b",
                               "//h?%61=1&a%3D=2",
                               "http://h/p?a+b=1&a%20b=2",
                               "x:y?a=%26&b=%3D",
                               "/?a=1&&b=2&",
                               "#f",
                               "http://h/p?a=1#a=2&b=3",
                               "?=1&=&a",
                               "http://h/?%C3%A4=1&\x24=2"};
  for (const char* text : texts) {
    expectMerged(text, {{"a", "9"}});
    expectMerged(text, {{"a b", "& =+%#?/"}, {"\xC3\xA4", "\xF0\x9F\x98\x80"}});
    expectMerged(text, {{"b", ""}, {"a", "1"}, {"=", "="}});
  }
}

TEST(QueryPeers, ReadWhatParametersMakeOfGeneratedUrls) {
  test_support::RandomUrls urls(3);
  for (int i = 0; i < kUrls && !HasFailure(); ++i) {
    std::string text = "http://h/p?" + urls.query() + (urls.chance(3) ? "#a=1&b" : "");
    Items added = {{urls.chance(2) ? "a" : "b" + urls.value(), urls.value()}};
    if (urls.chance(2)) added.emplace_back("c" + urls.value(), urls.value());
    expectMerged(text, added);
  }
}

}  // namespace
}  // namespace qx
