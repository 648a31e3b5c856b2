// FormatString: the text of a qualifier format. A literal is checked by the compiler for everything
// that would raise (conversions that do not exist, missing arguments, arguments of the wrong kind);
// text that is known only at run time goes through `runtimeFormat`.
//
//     qx::QXQualifier::qualifierWithQualifierFormat("age > %d and name like %@", 21, "J*");
//     qx::QXQualifier::qualifierWithQualifierFormat(qx::runtimeFormat(textFromTheUser));
//
// The grammar stands in qualifier.h. The compiler and the parser run the one scanner below.
#pragma once

#include <concepts>
#include <cstddef>
#include <string_view>
#include <type_traits>

#include <QXFoundation/number.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/string.h>
#include <QXFoundation/string_arg.h>

namespace qx {

namespace detail::format {

// The C locale's classes of bytes.
constexpr bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
constexpr bool isLetterOrDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
constexpr bool isWordByte(char c) {
  return isLetterOrDigit(c) || c == '#' || c == '$' || c == '%' || c == '@' || c == '_';
}
constexpr bool isQuote(char c) { return c == '\'' || c == '"'; }
constexpr char lowered(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

enum class Connective : unsigned char { none, conjunction, disjunction };

// What a scanner reports, in the order of the text. A sink hides the events it listens to.
// Positions are byte offsets.
struct IgnoringSink {
  constexpr void beginComparison(bool /*negated*/) {}
  constexpr void beginKey(std::size_t /*position*/) {}
  constexpr void endKey() {}
  constexpr void operatorText(std::string_view /*text*/, std::size_t /*position*/) {}
  constexpr void beginValue(std::size_t /*position*/) {}
  constexpr void castTo(std::string_view /*className*/, std::size_t /*position*/) {}
  // The value is nil, the word itself.
  constexpr void nilValue() {}
  // What follows as text stands in quotes; `closing` is where the closing one is, or the end of the
  // text.
  constexpr void quoted(std::size_t /*closing*/) {}
  // A piece of the key or value.
  constexpr void text(std::string_view /*piece*/) {}
  // A conversion; `whole` when its argument is the value itself. False ends the scan.
  constexpr bool argument(char /*letter*/, bool /*whole*/, std::size_t /*position*/) {
    return true;
  }
  // A conversion that does not exist, at the position of its percent sign. Ends the scan.
  constexpr void unrecognized(std::size_t /*position*/) {}
  // `constant`: a constant was met in this comparison or before it.
  constexpr void endComparison(bool /*constant*/) {}
  constexpr void connective(Connective /*word*/, std::size_t /*position*/, bool /*endsText*/) {}
  // The scan ended at `position`; what is left of the text is ignored.
  constexpr void finish(std::size_t /*position*/) {}
};

// One pass over the bytes of a format, left to right: comparisons joined by connectives, until
// something else follows a comparison. Never looks further ahead than a keyword, and never
// backwards.
template <class Sink>
class Scanner {
 public:
  constexpr Scanner(std::string_view text, Sink& sink) : text_(text), sink_(sink) {}

  constexpr void run() {
    if (text_.empty()) return;
    do {
      comparison();
    } while (!stopped_ && connective());
    if (!stopped_) sink_.finish(at_);
  }

 private:
  constexpr bool atEnd() const { return at_ >= text_.size(); }
  // A byte of no class stands for the end.
  constexpr char byteAt(std::size_t position) const {
    return position < text_.size() ? text_[position] : '\0';
  }
  constexpr void skipSpace() {
    while (!atEnd() && isSpace(text_[at_])) ++at_;
  }

  // Skips the word when it stands here in any case, followed by the end, a blank or an opening
  // parenthesis.
  constexpr bool keyword(std::string_view word) {
    if (text_.size() - at_ < word.size()) return false;
    for (std::size_t i = 0; i < word.size(); ++i) {
      if (lowered(text_[at_ + i]) != word[i]) return false;
    }
    const std::size_t behind = at_ + word.size();
    if (behind < text_.size() && text_[behind] != ' ' && text_[behind] != '(') return false;
    at_ = behind;
    return true;
  }

  constexpr void comparison() {
    skipSpace();
    sink_.beginComparison(keyword("not"));
    key();
    if (stopped_) return;
    skipSpace();
    operatorText();
    value();
    if (!stopped_) sink_.endComparison(constantSeen_);
  }

  constexpr void key() {
    skipSpace();
    sink_.beginKey(at_);
    if (isQuote(byteAt(at_))) {
      quotedText();
    } else {
      word(false, false);
    }
    if (!stopped_) sink_.endKey();
  }

  // Runs to the next space, and ends before a letter or digit unless it starts with one.
  constexpr void operatorText() {
    const std::size_t begin = at_;
    const bool isWord = isLetterOrDigit(byteAt(at_));
    while (!atEnd() && !isSpace(text_[at_]) && (isWord || !isLetterOrDigit(text_[at_]))) ++at_;
    sink_.operatorText(text_.substr(begin, at_ - begin), begin);
  }

  constexpr void value() {
    skipSpace();
    sink_.beginValue(at_);
    const bool cast = castName();
    if (nilWord()) {
      sink_.nilValue();
    } else if (isQuote(byteAt(at_))) {
      constantSeen_ = true;
      quotedText();
    } else {
      word(true, cast);
    }
  }

  // "(Name)"; an unclosed one ends at the end of the text.
  constexpr bool castName() {
    if (byteAt(at_) != '(') return false;
    const std::size_t begin = ++at_;
    while (!atEnd() && text_[at_] != ')') ++at_;
    sink_.castTo(text_.substr(begin, at_ - begin), begin);
    if (!atEnd()) ++at_;
    return true;
  }

  // "nil", in lower case only, followed by the end or a blank.
  constexpr bool nilWord() {
    if (text_.substr(at_, 3) != "nil") return false;
    if (at_ + 3 < text_.size() && text_[at_ + 3] != ' ') return false;
    at_ += 3;
    return true;
  }

  // Without escapes. Stays on the closing quote.
  constexpr void quotedText() {
    const char quote = text_[at_];
    const std::size_t begin = ++at_;
    while (!atEnd() && text_[at_] != quote) ++at_;
    sink_.quoted(at_);
    sink_.text(text_.substr(begin, at_ - begin));
  }

  constexpr void word(bool isValue, bool cast) {
    std::size_t begin = at_;
    while (!atEnd() && isWordByte(text_[at_])) {
      if (text_[at_] != '%') {
        ++at_;
        continue;
      }
      if (isValue) constantSeen_ = true;
      const bool whole = isValue && !cast && byteAt(at_ + 1) != '%';
      if (!whole) flush(begin);
      if (!conversion(whole) || whole) return;
      begin = at_;
    }
    flush(begin);
  }

  constexpr void flush(std::size_t begin) {
    if (at_ > begin) sink_.text(text_.substr(begin, at_ - begin));
  }

  // Stands on a percent sign. False when the scan is to end.
  constexpr bool conversion(bool whole) {
    const std::size_t position = at_;
    const char letter = byteAt(at_ + 1);
    if (letter != '%' && letter != '@' && letter != 'd' && letter != 'f' && letter != 's') {
      sink_.unrecognized(position);
      stopped_ = true;
      return false;
    }
    at_ += 2;
    if (letter == '%') {
      sink_.text("%");
    } else {
      stopped_ = !sink_.argument(letter, whole, position);
    }
    return !stopped_;
  }

  // True when another comparison follows.
  constexpr bool connective() {
    skipSpace();
    const std::size_t position = at_;
    const Connective word = keyword("and")  ? Connective::conjunction
                            : keyword("or") ? Connective::disjunction
                                            : Connective::none;
    if (word == Connective::none) return false;
    sink_.connective(word, position, atEnd());
    return !atEnd();
  }

  std::string_view text_;
  Sink& sink_;
  std::size_t at_ = 0;
  // Set by the first constant and kept: every later comparison is one with a constant.
  bool constantSeen_ = false;
  bool stopped_ = false;
};

// What is known of an argument by its type. `any` is told apart at run time.
enum class ArgumentKind : unsigned char { boolean, integer, floating, text, other, any };

template <class T>
inline constexpr bool kIsObject = false;
template <class T>
inline constexpr bool kIsObject<Ref<T>> = true;

template <class T>
consteval ArgumentKind kindOfObject() {
  if (std::is_base_of_v<String, T>) return ArgumentKind::text;
  if (std::is_base_of_v<T, String> || std::is_base_of_v<T, Number> ||
      std::is_base_of_v<Number, T>) {
    return ArgumentKind::any;
  }
  return ArgumentKind::other;
}

template <class T>
consteval ArgumentKind argumentKind() {
  using U = std::remove_cvref_t<T>;
  static_assert(std::convertible_to<T, PropertyValue>,
                "an argument of a qualifier format is a bool, a number, text, nil, null or an "
                "object: say int{c} for "
                "a char, double(x) for a long double, and share an object by Ref");
  if constexpr (std::same_as<U, bool>) {
    return ArgumentKind::boolean;
  } else if constexpr (Integer<U>) {
    return ArgumentKind::integer;
  } else if constexpr (std::floating_point<U>) {
    return ArgumentKind::floating;
  } else if constexpr (Utf8Text<U> || std::same_as<U, StringArg>) {
    return ArgumentKind::text;
  } else if constexpr (kIsObject<U>) {
    return kindOfObject<typename U::element_type>();
  } else if constexpr (std::is_pointer_v<U>) {
    return kindOfObject<std::remove_pointer_t<U>>();
  } else {
    return std::same_as<U, PropertyValue> ? ArgumentKind::any : ArgumentKind::other;
  }
}

enum class Fault : unsigned char {
  none,
  unrecognized,
  missingArgument,
  wantsInteger,
  wantsFloating,
  wantsText
};

// Finds what would make the parser raise, whatever the values of the arguments.
class CheckingSink : public IgnoringSink {
 public:
  constexpr CheckingSink(const ArgumentKind* kinds, std::size_t count)
      : kinds_(kinds), count_(count) {}
  constexpr Fault fault() const { return fault_; }

  constexpr bool argument(char letter, bool /*whole*/, std::size_t /*position*/) {
    fault_ = used_ == count_ ? Fault::missingArgument : mismatch(letter, kinds_[used_++]);
    return fault_ == Fault::none;
  }
  constexpr void unrecognized(std::size_t /*position*/) { fault_ = Fault::unrecognized; }

 private:
  static constexpr Fault mismatch(char letter, ArgumentKind kind) {
    if (kind == ArgumentKind::any) return Fault::none;
    if (letter == 'd' && kind != ArgumentKind::integer) return Fault::wantsInteger;
    if (letter == 'f' && kind != ArgumentKind::floating) return Fault::wantsFloating;
    if (letter == 's' && kind != ArgumentKind::text) return Fault::wantsText;
    return Fault::none;
  }

  const ArgumentKind* kinds_;
  std::size_t count_;
  std::size_t used_ = 0;
  Fault fault_ = Fault::none;
};

constexpr Fault firstFault(std::string_view text, const ArgumentKind* kinds, std::size_t count) {
  CheckingSink sink(kinds, count);
  Scanner<CheckingSink>(text, sink).run();
  return sink.fault();
}

// Never defined: the compiler names the one that applies.
void unknown_conversion_write_percent_at_or_d_or_f_or_s_or_double_percent();
void the_format_has_more_conversions_than_arguments();
void percent_d_takes_an_integer_use_percent_at_for_other_values();
void percent_f_takes_a_floating_point_number_use_percent_d_for_integers();
void percent_s_takes_text_use_percent_at_for_other_values();

template <class T>
inline constexpr bool kNever = false;

}  // namespace detail::format

// Text for a format that the compiler does not see; see `runtimeFormat`. Borrows the text.
struct RuntimeFormat {
  // The format.
  StringArg text;
};

// Lets the text be parsed as it is: what is wrong with it raises InvalidArgumentException when it
// is parsed.
inline RuntimeFormat runtimeFormat(StringArg text) { return {text}; }

// The format parameter of an operation that takes arguments of the types A. Borrows its text;
// parameter only.
template <class... A>
class FormatString {
 public:
  // A literal, which the compiler checks against the arguments, or a text that was marked by
  // runtimeFormat.
  template <std::size_t N>
  consteval FormatString(const char (&literal)[N]) : text_(std::string_view(literal, N - 1)) {
    namespace f = detail::format;
    const f::ArgumentKind kinds[] = {f::argumentKind<A>()..., f::ArgumentKind::other};
    switch (f::firstFault(std::string_view(literal, N - 1), kinds, sizeof...(A))) {
      case f::Fault::none:
        break;
      case f::Fault::unrecognized:
        f::unknown_conversion_write_percent_at_or_d_or_f_or_s_or_double_percent();
        break;
      case f::Fault::missingArgument:
        f::the_format_has_more_conversions_than_arguments();
        break;
      case f::Fault::wantsInteger:
        f::percent_d_takes_an_integer_use_percent_at_for_other_values();
        break;
      case f::Fault::wantsFloating:
        f::percent_f_takes_a_floating_point_number_use_percent_d_for_integers();
        break;
      case f::Fault::wantsText:
        f::percent_s_takes_text_use_percent_at_for_other_values();
        break;
    }
  }
  FormatString(RuntimeFormat format) : text_(format.text) {}
  // A nil format gives a nil qualifier.
  constexpr FormatString(std::nullptr_t) {}
  template <class S>
    requires(Utf8Text<S> || std::convertible_to<S, StringArg>) && (!std::is_array_v<S>)
  FormatString(const S&) {
    static_assert(detail::format::kNever<S>,
                  "a format that is no literal is written qx::runtimeFormat(text)");
  }
  template <std::size_t N>
  FormatString(char (&)[N]) {
    static_assert(N == 0, "a format that is no literal is written qx::runtimeFormat(text)");
  }

  // The format.
  StringArg text() const { return text_; }

 private:
  StringArg text_ = nullptr;
};

}  // namespace qx
