// The parser against a slow transcription of the grammar, over every short format of a small
// vocabulary and over many random longer ones; with it the compile-time check and the explanation,
// which must agree with the parser.

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include <QXFoundation/exception.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_explanation.h>

#include "tests/qualifiers/tree_text.h"

namespace qx {
namespace {

// Arguments of any conversion: the n-th %d is n, the n-th %@ and %s are texts.
struct Conversions {
  std::vector<PropertyValue> values;
  std::vector<std::string> shown;
};

bool blankOrBracketOrEnd(const std::string& s, std::size_t i) {
  return i >= s.size() || s[i] == ' ' || s[i] == '(';
}

bool sameWord(const std::string& s, std::size_t i, const std::string& word) {
  if (i + word.size() > s.size()) return false;
  for (std::size_t k = 0; k < word.size(); ++k) {
    if (std::tolower(static_cast<unsigned char>(s[i + k])) != word[k]) return false;
  }
  return blankOrBracketOrEnd(s, i + word.size());
}

bool space(const std::string& s, std::size_t i) {
  return i < s.size() && std::isspace(static_cast<unsigned char>(s[i])) != 0;
}
bool alnum(const std::string& s, std::size_t i) {
  return i < s.size() && std::isalnum(static_cast<unsigned char>(s[i])) != 0;
}
bool wordByte(const std::string& s, std::size_t i) {
  return alnum(s, i) || (i < s.size() && std::string("#$%@_").find(s[i]) != std::string::npos);
}

struct Raised {};

// Step by step, on printed trees.
class Transcription {
 public:
  explicit Transcription(std::string format) : s_(std::move(format)) {}

  std::string parse() {
    if (s_.empty()) return "nil";
    std::string combinator;
    std::vector<std::string> list;
    std::string current;
    while (true) {
      current = comparison();
      skip();
      std::string next;
      if (sameWord(s_, i_, "and")) {
        next = "and";
      } else if (sameWord(s_, i_, "or")) {
        next = "or";
      } else {
        break;
      }
      i_ += next.size();
      if (combinator.empty()) {
        list = {current};
      } else if (combinator == next) {
        list.push_back(current);
      } else {
        list = {print(combinator, list)};
      }
      combinator = next;
      if (i_ >= s_.size()) break;
    }
    if (combinator.empty()) return current;
    list.push_back(current);
    return print(combinator, list);
  }

  std::size_t conversions() const { return conversions_; }

 private:
  static std::string print(const std::string& combinator, const std::vector<std::string>& list) {
    std::string text = combinator + "(";
    for (std::size_t k = 0; k < list.size(); ++k) text += (k != 0 ? ", " : "") + list[k];
    return text + ")";
  }

  void skip() {
    while (space(s_, i_)) ++i_;
  }

  std::string comparison() {
    skip();
    const bool negated = sameWord(s_, i_, "not");
    if (negated) i_ += 3;
    const std::string key = token(false).text;
    skip();
    const std::string op = readOperator();
    const Token right = token(true);
    std::string text;
    if (seen_) {
      text = "kv(" + key + " " + op + " " + right.asValue + ")";
    } else {
      text = "kc(" + key + " " + op + " " + (right.isNil ? "nil" : right.text) + ")";
    }
    return negated ? "not(" + text + ")" : text;
  }

  std::string readOperator() {
    const std::size_t start = i_;
    if (alnum(s_, i_)) {
      while (i_ < s_.size() && !space(s_, i_)) ++i_;
    } else {
      while (i_ < s_.size() && !space(s_, i_) && !alnum(s_, i_)) ++i_;
    }
    const std::string text = s_.substr(start, i_ - start);
    if (text == "=" || text == "==") return "=";
    if (text == "<>" || text == "!=") return "!=";
    for (const char* known : {"<=", "<", ">=", ">", "contains", "like", "caseInsensitiveLike"}) {
      if (text == known) return text;
    }
    return "?";
  }

  struct Token {
    std::string text;
    std::string asValue;
    bool isNil = false;
  };

  static std::string made(const std::string& className, const std::string& text) {
    if (className == "NSString") return '"' + text + '"';
    return "nil";
  }

  Token token(bool isValue) {
    skip();
    bool cast = false;
    std::string className;
    if (isValue) {
      if (i_ < s_.size() && s_[i_] == '(') {
        cast = true;
        for (++i_; i_ < s_.size() && s_[i_] != ')'; ++i_) className += s_[i_];
        if (i_ < s_.size()) ++i_;
      }
      if (s_.compare(i_, 3, "nil") == 0 && (i_ + 3 >= s_.size() || s_[i_ + 3] == ' ')) {
        i_ += 3;
        return {"", "nil", true};
      }
    }
    if (i_ < s_.size() && (s_[i_] == '\'' || s_[i_] == '"')) {
      const char quote = s_[i_++];
      std::string text;
      while (i_ < s_.size() && s_[i_] != quote) text += s_[i_++];
      if (isValue) seen_ = true;
      return finished(text, cast, className);
    }
    std::string text;
    while (wordByte(s_, i_)) {
      if (s_[i_] != '%') {
        text += s_[i_++];
        continue;
      }
      if (isValue) seen_ = true;
      ++i_;
      const char c = i_ < s_.size() ? s_[i_] : '\0';
      if (c == '%') {
        text += c;
        ++i_;
        continue;
      }
      if (c != 'd' && c != '@' && c != 's') throw Raised();
      ++i_;
      ++conversions_;
      const std::string n = std::to_string(conversions_);
      if (isValue && !cast) return {"", c == 'd' ? n : "\"t" + n + "\"", false};
      text += c == 'd' ? n : "t" + n;
    }
    return finished(text, cast, className);
  }

  static Token finished(const std::string& text, bool cast, const std::string& className) {
    if (!cast) return {text, '"' + text + '"', false};
    const std::string object = made(className, text);
    return {text, object, object == "nil"};
  }

  std::string s_;
  std::size_t i_ = 0;
  bool seen_ = false;
  std::size_t conversions_ = 0;
};

// The n-th argument for the conversion that the format has there.
std::vector<PropertyValue> argumentsFor(const std::string& letters) {
  std::vector<PropertyValue> arguments;
  for (std::size_t n = 1; n <= letters.size(); ++n) {
    if (letters[n - 1] == 'd') {
      arguments.emplace_back(static_cast<int>(n));
    } else {
      arguments.emplace_back("t" + std::to_string(n));
    }
  }
  return arguments;
}

// The letters of the conversions that a scan meets.
struct Letters : detail::format::IgnoringSink {
  std::string found;
  bool argument(char letter, bool, std::size_t) {
    found += letter;
    return true;
  }
};

std::string parsed(const std::string& format, const std::vector<PropertyValue>& arguments) {
  try {
    return treeText(
        QXQualifier::_qualifierWithQualifierFormat(format, arguments.data(), arguments.size()));
  } catch (const InvalidArgumentException&) {
    return "raised";
  }
}

std::string explained(const std::string& format, const std::vector<PropertyValue>& arguments) {
  try {
    return treeText(detail::explainFormat(format, arguments.data(), arguments.size()).qualifier);
  } catch (const InvalidArgumentException&) {
    return "raised";
  }
}

namespace f = detail::format;

bool compilerAccepts(const std::string& format, const std::string& letters, std::size_t count) {
  std::vector<f::ArgumentKind> kinds(count + 1, f::ArgumentKind::other);
  for (std::size_t i = 0; i < count; ++i) {
    kinds[i] = letters[i] == 'd' ? f::ArgumentKind::integer : f::ArgumentKind::text;
  }
  return f::firstFault(format, kinds.data(), count) == f::Fault::none;
}

// True when all agree; says what does not.
bool agrees(const std::string& format) {
  Letters letters;
  f::Scanner<Letters>(format, letters).run();
  const auto arguments = argumentsFor(letters.found);
  std::string expected;
  std::size_t conversions = 0;
  try {
    Transcription transcription(format);
    expected = transcription.parse();
    conversions = transcription.conversions();
  } catch (const Raised&) {
    expected = "raised";
    conversions = letters.found.size();
  }
  const std::string got = parsed(format, arguments);
  EXPECT_EQ(got, expected) << format;
  EXPECT_EQ(explained(format, arguments), expected) << format;
  EXPECT_EQ(letters.found.size(), conversions) << format;
  EXPECT_EQ(compilerAccepts(format, letters.found, arguments.size()), expected != "raised")
      << format;
  if (!arguments.empty()) {
    const std::vector<PropertyValue> fewer(arguments.begin(), arguments.end() - 1);
    EXPECT_EQ(parsed(format, fewer), "raised") << format;
    EXPECT_FALSE(compilerAccepts(format, letters.found, fewer.size())) << format;
  }
  return !testing::Test::HasFailure();
}

// Every sequence of up to `length` words, joined.
void checkAll(const std::vector<std::string>& words, std::size_t length, const std::string& joint) {
  std::vector<std::size_t> at;
  while (true) {
    std::string format;
    for (std::size_t k = 0; k < at.size(); ++k) format += (k != 0 ? joint : "") + words[at[k]];
    if (!agrees(format)) return;
    std::size_t k = 0;
    while (k < at.size() && ++at[k] == words.size()) at[k++] = 0;
    if (k < at.size()) continue;
    if (at.size() == length) return;
    at.assign(at.size() + 1, 0);
  }
}

const std::vector<std::string> kWords = {"a",   "=",   "%d", "%@",  "'x'",
                                         "nil", "and", "or", "not", "("};

TEST(FormatExhaustive, WordsBetweenBlanks) { checkAll(kWords, 5, " "); }

TEST(FormatExhaustive, BytesThatTouch) {
  checkAll({"a", "=", "%", "d", "'", "nil", "and", "not", "(", ")", " "}, 5, "");
}

TEST(FormatExhaustive, RandomFormats) {
  std::vector<std::string> words = kWords;
  words.insert(words.end(),
               {"b", "<>", "like", "AND", "Or", "%s", "%%", "\"y z\"", ")", "(NSString)", "(Nope)",
                "1.5", "%x", "\xC3\xA4", "%", "\t", "!=", "(NSString"});
  std::mt19937 random(20240611);
  for (int n = 0; n < 60000; ++n) {
    std::string format;
    const std::size_t count = 3 + random() % 14;
    for (std::size_t k = 0; k < count; ++k) {
      // Mostly what makes sense at its place, so that long formats are read to the end.
      static const std::vector<std::string> likely[] = {{"a", "b", "k%s", "not a"},
                                                        {"=", "<>", "like"},
                                                        {"%d", "%@", "b", "nil", "(NSString)%d"},
                                                        {"and", "or"}};
      const auto& pool = random() % 8 != 0 ? likely[k % 4] : words;
      format += pool[random() % pool.size()];
      if (random() % 16 != 0) format += ' ';
    }
    if (!agrees(format)) return;
  }
}

}  // namespace
}  // namespace qx
