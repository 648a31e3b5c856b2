// Query texts and parameters.

#include <gtest/gtest.h>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/exception.h>
#include <QXFoundation/url_query.h>

#include "platform/url_parts.h"

namespace qx {
namespace {

constexpr char kHost[] = "http://example.com";

Ref<URL> url(const std::string& text) { return URL::URLWithString(text); }
std::string text(const Ref<URL>& u) { return u == nullptr ? "nil" : u->description(); }

struct AppendCase {
  const char* before;
  const char* query;
  const char* after;
};

class QueryString : public testing::TestWithParam<AppendCase> {};

TEST_P(QueryString, GoesBehindTheWholeText) {
  const auto& [before, query, after] = GetParam();
  EXPECT_EQ(text(URLByAppendingQueryString(url(kHost + std::string(before)), query)),
            std::string_view(after) == "nil" ? "nil" : kHost + std::string(after));
}

INSTANTIATE_TEST_SUITE_P(
    Table, QueryString,
    testing::Values(AppendCase{"/p", "a=1", "/p?a=1"}, AppendCase{"/p?x=2", "a=1", "/p?x=2&a=1"},
                    AppendCase{"/p?", "a=1", "/p?&a=1"}, AppendCase{"/p#top", "a=1", "/p#top?a=1"},
                    AppendCase{"/p?x#top", "a=1", "/p?x#top&a=1"},
                    AppendCase{"", "a=1&b=%20", "?a=1&b=%20"}, AppendCase{"/p", "a b", "nil"},
                    AppendCase{"/p", "%", "nil"}, AppendCase{"/p#top", "a#b", "nil"},
                    AppendCase{"/p", "\xC3\xA4", "nil"}, AppendCase{"/p", "a#b", "/p?a#b"}));

TEST(QueryString, WithoutTextIsTheUrlItself) {
  const auto u = url("http://h/p?x");
  EXPECT_EQ(URLByAppendingQueryString(u, "").get(), u.get());
  EXPECT_EQ(URLByAppendingQueryString(u, nullptr).get(), u.get());
  EXPECT_EQ(URLByAppendingQueryParameters(u, dict()).get(), u.get());
  EXPECT_EQ(URLByAppendingQueryParameters(u, nullptr).get(), u.get());
  EXPECT_TRUE(URLByAppendingQueryString(nullptr, "a") == nullptr);
  EXPECT_TRUE(URLByAppendingQueryParameters(nullptr, dict({{"a", "b"}})) == nullptr);
}

struct MergeCase {
  const char* before;
  Ref<Dictionary> parameters;
  const char* after;
};

class QueryParameters : public testing::TestWithParam<MergeCase> {};

TEST_P(QueryParameters, ReplaceItemsOfTheirNames) {
  const auto result = URLByAppendingQueryParameters(url(kHost + std::string(GetParam().before)),
                                                    GetParam().parameters);
  EXPECT_EQ(text(result), kHost + std::string(GetParam().after));
  ASSERT_TRUE(detail::isValidUrl(result->text()));
  // The parts are those of the text read anew.
  const auto again = URL::URLWithString(result->absoluteString());
  EXPECT_TRUE(PropertyValue(again->query()) == PropertyValue(result->query()));
  EXPECT_TRUE(PropertyValue(again->fragment()) == PropertyValue(result->fragment()));
  EXPECT_TRUE(PropertyValue(again->path()) == PropertyValue(result->path()));
}

INSTANTIATE_TEST_SUITE_P(
    Table, QueryParameters,
    testing::Values(MergeCase{"/p?a=1&b=2&a=3", dict({{"a", "9"}}), "/p?b=2&a=9"},
                    MergeCase{"/p", dict({{"a", "9"}}), "/p?a=9"},
                    MergeCase{"", dict({{"a", "9"}}), "?a=9"},
                    MergeCase{"/p?", dict({{"a", "9"}}), "/p?a=9"},
                    MergeCase{"/p?#", dict({{"a", "9"}}), "/p?a=9#"},
                    MergeCase{"/p#a?b", dict({{"a", "9"}}), "/p?a=9#a?b"},
                    MergeCase{"/p?a", dict({{"a", "9"}}), "/p?a=9"},
                    MergeCase{"/p?x=1#f", dict({{"b", "2"}, {"a", "1"}}), "/p?x=1&b=2&a=1#f"},
                    // Items that are not named keep their bytes.
                    MergeCase{"/p?&&x&=&y=%7e+%41&", dict({{"a", "9"}}), "/p?&&x&=&y=%7e+%41&&a=9"},
                    MergeCase{"/p?A=1&%61=2&b=a", dict({{"a", "9"}}), "/p?A=1&b=a&a=9"},
                    MergeCase{"/p?%C3%A4=1&x", dict({{"\xC3\xA4", "9"}}), "/p?x&%C3%A4=9"},
                    MergeCase{"/p?%FF=1", dict({{"\xEF\xBF\xBD", "9"}}), "/p?%FF=1&%EF%BF%BD=9"},
                    MergeCase{"/p?a+b=1&a%20b=2", dict({{"a b", "9"}}), "/p?a+b=1&a%20b=9"},
                    MergeCase{"/p?a=b=c&b=1", dict({{"b", "2"}}), "/p?a=b=c&b=2"},
                    MergeCase{"/p?=1&b", dict({{"", "2"}}), "/p?b&=2"},
                    // What is encoded, and what is not.
                    MergeCase{"/p", dict({{"-._~!$'()*,;:@/?", "-._~!$'()*,;:@/?"}}),
                              "/p?-._~!$'()*,;:@/?=-._~!$'()*,;:@/?"},
                    MergeCase{"/p", dict({{"a=b&c+d", "=&+ #%[]"}}),
                              "/p?a%3Db%26c%2Bd=%3D%26%2B%20%23%25%5B%5D"},
                    MergeCase{"/p", dict({{"\xE2\x82\xAC", "\xF0\x9F\x98\x80\n"}}),
                              "/p?%E2%82%AC=%F0%9F%98%80%0A"}));

TEST(QueryParameters, MayBeMany) {
  const auto parameters = MutableDictionary::init();
  std::string before = "http://h/p?kept=1";
  std::string after = before;
  for (int i = 0; i < 20000; ++i) {
    const std::string n = std::to_string(i);
    before += "&k" + n + "=old";
    after += "&k" + n + "=v" + n;
    parameters->setObject("v" + n, "k" + n);
  }
  EXPECT_TRUE(text(URLByAppendingQueryParameters(url(before), parameters)) == after);
}

// Names are found whether they are few or many, in Latin-1 or beyond it, and whatever was taken out
// of the dictionary before.
TEST(QueryParameters, AreFoundInEveryKindOfDictionary) {
  for (const int count : {1, 7, 8, 9, 16, 17, 40}) {
    for (const int removed : {0, 1, 30}) {
      const auto parameters = MutableDictionary::init();
      for (int i = 0; i < removed; ++i) parameters->setObject("gone", "gone" + std::to_string(i));
      std::string before = "http://h/p?x&gone0=1";
      std::string after = before;
      for (int i = 0; i < count; ++i) {
        const std::string n = std::to_string(i);
        const bool isWide = i % 3 == 2;
        parameters->setObject("v", (isWide ? "\xE2\x82\xAC" : "k") + n);
        const std::string written = (isWide ? "%E2%82%AC" : "k") + n;
        before += "&" + written + "=old&x" + n;
        after += "&x" + n;
      }
      for (int i = 0; i < count; ++i) {
        after += std::string("&") + (i % 3 == 2 ? "%E2%82%AC" : "k") + std::to_string(i) + "=v";
      }
      for (int i = 0; i < removed; ++i) parameters->removeObjectForKey("gone" + std::to_string(i));
      EXPECT_EQ(text(URLByAppendingQueryParameters(url(before), parameters)), after)
          << count << " " << removed;
    }
  }
}

// Around what is kept on the stack, whose room grows in the middle of a name, a value, or an item.
TEST(QueryParameters, MayBeOfAnyLength) {
  for (const std::size_t length : {1U, 160U, 170U, 171U, 500U, 511U, 512U, 513U, 5000U, 100000U}) {
    const std::string plain(length, 'a');
    std::string encoded;
    for (std::size_t i = 0; i < length; ++i) encoded += "%20";
    EXPECT_EQ(
        text(URLByAppendingQueryParameters(
            url("http://h/" + plain + "?k=" + plain + "&d#f"),
            dict({{std::string(length, ' '), plain}, {"d", std::string(length, ' ')}}))),
        "http://h/" + plain + "?k=" + plain + "&" + encoded + "=" + plain + "&d=" + encoded + "#f");
  }
}

TEST(QueryParameters, AreStrings) {
  EXPECT_THROW((void)URLByAppendingQueryParameters(url("http://h/"), dict({{"a", 1}})),
               InvalidArgumentException);
  EXPECT_THROW((void)URLByAppendingQueryParameters(url("http://h/"), dict({{"a", qx::null}})),
               InvalidArgumentException);
}

TEST(QueryParameters, WorkOnRelativeAndOtherUrls) {
  EXPECT_EQ(text(URLByAppendingQueryParameters(url("p?a"), dict({{"b", "1"}}))), "p?a&b=1");
  EXPECT_EQ(text(URLByAppendingQueryParameters(url("mailto:x@y"), dict({{"b", "1"}}))),
            "mailto:x@y?b=1");
}

TEST(QuerySelectors, ReachTheSameOperations) {
  const PropertyValue u = url("http://h/p");
  EXPECT_EQ(performSelector(u, "URLByAppendingQueryString:", "a=1").description(),
            "http://h/p?a=1");
  EXPECT_EQ(performSelector(u, "URLByAppendingQueryParameters:", dict({{"a", "1"}})).description(),
            "http://h/p?a=1");
}

}  // namespace
}  // namespace qx
