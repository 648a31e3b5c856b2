// URLs beside the grammar of RFC 3986, and beside what another library takes them apart to.

#include <gtest/gtest.h>
#include <uriparser/Uri.h>

#include <optional>
#include <regex>
#include <string>
#include <vector>

#include <QXFoundation/url.h>

#include "tests/support/random_urls.h"

namespace qx {
namespace {

constexpr int kUrls = 5000;

// The rules of the RFC's collected grammar but for addresses in brackets.
const std::regex& grammar() {
  static const std::string pchar = "(?:[A-Za-z0-9._~!$&'()*+,;=:@-]|%[0-9A-Fa-f]{2})";
  static const std::string noColon = "(?:[A-Za-z0-9._~!$&'()*+,;=@-]|%[0-9A-Fa-f]{2})";
  static const std::string userInfo = "(?:[A-Za-z0-9._~!$&'()*+,;=:-]|%[0-9A-Fa-f]{2})*";
  static const std::string host = "(?:[A-Za-z0-9._~!$&'()*+,;=-]|%[0-9A-Fa-f]{2})*";
  static const std::string abEmpty = "(?:/" + pchar + "*)*";
  static const std::string withAuthority =
      "//(?:" + userInfo + "@)?" + host + "(?::[0-9]*)?" + abEmpty;
  static const std::string absolute = "/(?:" + pchar + "+" + abEmpty + ")?";
  static const std::string tail = "(?:\\?(?:" + pchar + "|[/?])*)?(?:#(?:" + pchar + "|[/?])*)?";
  static const std::regex whole("(?:[A-Za-z][A-Za-z0-9+.-]*:(?:" + withAuthority + "|" + absolute +
                                "|" + pchar + "+" + abEmpty + ")?|(?:" + withAuthority + "|" +
                                absolute + "|" + noColon + "+" + abEmpty + ")?)" + tail);
  return whole;
}

TEST(UrlPeers, ValidityIsThatOfTheGrammar) {
  test_support::RandomUrls urls(1);
  int valid = 0;
  for (int i = 0; i < kUrls; ++i) {
    const std::string text = urls.next();
    const bool isValid = URL::URLWithString(text) != nullptr;
    ASSERT_EQ(isValid, std::regex_match(text, grammar())) << testing::PrintToString(text);
    valid += isValid ? 1 : 0;
  }
  EXPECT_GT(valid, kUrls / 4);
  EXPECT_LT(valid, kUrls * 19 / 20);
}

// A URL in the peer's hands. It tells no empty path, host or authority from a missing one.
class Peer {
 public:
  explicit Peer(const std::string& text) : text_(text) {
    const char* fault = nullptr;
    isValid_ = uriParseSingleUriA(&uri_, text_.c_str(), &fault) == URI_SUCCESS;
  }
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;
  ~Peer() {
    if (isValid_) uriFreeUriMembersA(&uri_);
  }

  bool isValid() const { return isValid_; }
  std::optional<std::string> scheme() const { return textOf(uri_.scheme); }
  std::optional<std::string> host() const { return textOf(uri_.hostText); }
  std::optional<std::string> query() const { return textOf(uri_.query); }
  std::optional<std::string> fragment() const { return textOf(uri_.fragment); }
  // With percent-encoding undone, and without a slash at its end, as the library shows it.
  std::string path() const {
    const bool startsWithSlash = uri_.absolutePath || (isHost() && uri_.pathHead != nullptr);
    std::string path = startsWithSlash ? "/" : "";
    for (const UriPathSegmentA* at = uri_.pathHead; at != nullptr; at = at->next) {
      path += textOf(at->text).value_or("");
      if (at->next != nullptr) path += '/';
    }
    if (path.size() > 1 && path.ends_with('/')) path.pop_back();
    std::vector<char> bytes(path.begin(), path.end());
    bytes.push_back('\0');
    const char* end = uriUnescapeInPlaceA(bytes.data());
    return {static_cast<const char*>(bytes.data()), end};
  }

 private:
  bool isHost() const { return uri_.hostText.first != nullptr; }
  static std::optional<std::string> textOf(const UriTextRangeA& range) {
    if (range.first == nullptr) return std::nullopt;
    return std::string(range.first, range.afterLast);
  }

  std::string text_;
  UriUriA uri_{};
  bool isValid_ = false;
};

std::optional<std::string> textOf(const Ref<String>& text) {
  if (text == nullptr) return std::nullopt;
  return text->utf8();
}

void expectSameParts(const std::string& text) {
  const auto url = URL::URLWithString(text);
  const Peer peer(text);
  ASSERT_EQ(url != nullptr, peer.isValid()) << text;
  if (url == nullptr) return;
  EXPECT_EQ(textOf(url->scheme()), peer.scheme()) << text;
  EXPECT_EQ(textOf(url->host()), peer.host()) << text;
  EXPECT_EQ(url->fileSystemRepresentation(), peer.path()) << text;
  EXPECT_EQ(textOf(url->query()), peer.query()) << text;
  EXPECT_EQ(textOf(url->fragment()), peer.fragment()) << text;
}

TEST(UrlPeers, PartsAreThoseOfTheOtherLibrary) {
  for (const char* text : {"http://a@h:80/p/q/?x#y",
                           "mailto:a@b",
                           "//h",
                           "//h/",
                           "/",
                           "",
                           "?",
                           "#",
                           "a/b",
                           "./a:b",
                           "file:///a%20b/c%2Fd",
                           "x:",
                           "x:/",
                           "x:a",
                           "http://h?a?b#c?d",
                           "http://[::1]:8/p",
                           "//u:p@h:/",
                           "http://1.2.3.4/",
                           "a//b//",
                           "http://h//",
                           "urn:a:b?+c",
                           "http://[v1.x:y]/"}) {
    expectSameParts(text);
  }
  test_support::RandomUrls urls(2);
  for (int i = 0; i < kUrls && !HasFailure(); ++i) expectSameParts(urls.next());
}

}  // namespace
}  // namespace qx
