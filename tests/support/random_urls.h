#pragma once

// Texts that are URLs, or nearly so.

#include <cstddef>
#include <random>
#include <string>
#include <string_view>

namespace test_support {

// The same texts for the same seed.
class RandomUrls {
 public:
  explicit RandomUrls(unsigned seed) : random_(seed) {}

  // About half of them are URLs by RFC 3986; addresses in brackets are left out.
  std::string next() {
    std::string text;
    if (chance(2)) text += some("ahttpfile", 5) + (chance(9) ? "+" : "") + ":";
    if (chance(2)) text += "//" + authority();
    for (std::size_t parts = below(4); parts > 0; --parts) text += "/" + mixed(4);
    if (chance(8)) text = mixed(3) + text;
    if (chance(2)) text += "?" + query();
    if (chance(3)) text += "#" + mixed(5);
    if (chance(12)) text.insert(below(text.size() + 1), 1, kSpoiling[below(sizeof kSpoiling - 1)]);
    return text;
  }
  // What stands behind a question mark; always valid there. Names recur.
  std::string query() {
    std::string text;
    for (std::size_t items = below(6); items > 0; --items) {
      text += some("ab", 1) + queryText(3);
      if (chance(2)) text += "=" + queryText(4);
      if (items > 1) text += "&";
    }
    return text;
  }
  // Bytes of any kind but for NUL, as UTF-8.
  std::string value() {
    std::string text;
    for (std::size_t left = below(6); left > 0; --left) {
      static constexpr const char* kPieces[] = {
          "a", "&", "=", "+", " ", "%", "#", "?", "%41", "\n", "\xC3\xA4", "\xF0\x9F\x98\x80",
          "/", "b"};
      text += kPieces[below(std::size(kPieces))];
    }
    return text;
  }
  bool chance(std::size_t oneIn) { return below(oneIn) == 0; }
  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
  }

 private:
  static constexpr char kSpoiling[] = " <>\"\\^`{|}\x7F\x80\n%[]#:@";

  std::string some(std::string_view from, std::size_t most) {
    std::string text;
    for (std::size_t left = below(most) + 1; left > 0; --left) text += from[below(from.size())];
    return text;
  }
  std::string authority() {
    std::string text;
    if (chance(4)) text += some("ab:%41!", 3) + "@";
    text += some("ab.1-", 6);
    if (chance(3)) text += ":" + (chance(3) ? "" : some("0123456789", 3));
    return text;
  }
  std::string encoded() {
    static constexpr char kDigits[] = "0123456789abcdefABCDEF";
    return {'%', kDigits[2 + below(6)], kDigits[below(sizeof kDigits - 1)]};
  }
  std::string mixed(std::size_t most) {
    std::string text;
    for (std::size_t left = below(most + 1); left > 0; --left) {
      text += chance(5) ? encoded() : some("ab12-._~!$&'()*+,;=:@", 1);
    }
    return text;
  }
  std::string queryText(std::size_t most) {
    std::string text;
    for (std::size_t left = below(most + 1); left > 0; --left) {
      text += chance(4) ? encoded() : some("ab12-._~!$'()*+,;:@/?", 1);
    }
    return text;
  }

  std::mt19937 random_;
};

}  // namespace test_support
