#include "tools/qx/tag_words.h"

#include <cstdint>
#include <optional>

#include "tools/qx/failure.h"
#include "tools/qx/number_of.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

struct Colour {
  std::string_view name;
  // Sets the text colour of a terminal; orange is not among the eight that all terminals have.
  const char* sequence;
};

// By number, from 1.
constexpr Colour kColours[] = {{"grey", "\033[90m"},        {"green", "\033[32m"},
                               {"purple", "\033[35m"},      {"blue", "\033[34m"},
                               {"yellow", "\033[33m"},      {"red", "\033[31m"},
                               {"orange", "\033[38;5;208m"}};

const Colour* colourOf(std::int32_t number) {
  const bool isKnown = number >= 1 && number <= static_cast<std::int32_t>(std::size(kColours));
  return isKnown ? &kColours[number - 1] : nullptr;
}

std::int32_t colourFrom(std::string_view text, const std::string& word) {
  if (text.empty()) return 0;
  for (std::size_t i = 0; i < std::size(kColours); ++i) {
    if (kColours[i].name == text) return static_cast<std::int32_t>(i) + 1;
  }
  if (const auto number = numberOf<std::int32_t>(text)) return *number;
  throw Failure(word + ": a colour is a number, or " + kColourNames +
                "; a name with a colon in it has one behind it as well");
}

}  // namespace

qx::Ref<qx::QXColorTag> tagFromWord(const std::string& word) {
  const std::size_t colon = word.rfind(':');
  const std::string name = word.substr(0, colon);
  const std::int32_t colour =
      colon == std::string::npos ? 0 : colourFrom(std::string_view(word).substr(colon + 1), word);
  if (name.empty()) throw Failure("a tag has a name, unlike \"" + word + "\"");
  if (!isValidUtf8(name)) throw Failure("the name of a tag is not UTF-8: " + name);
  if (name.find('\n') != std::string::npos) {
    throw Failure("the name of a tag is one line, unlike " + name);
  }
  return qx::QXColorTag::colorTagWithName(name, colour);
}

std::string wordOf(const qx::QXColorTag& tag) {
  std::string word = tag.name()->utf8();
  const bool needsColon = tag.color() != 0 || word.find(':') != std::string::npos;
  if (needsColon) word += ':';
  if (const Colour* colour = colourOf(tag.color())) {
    word += colour->name;
  } else if (tag.color() != 0) {
    word += std::to_string(tag.color());
  }
  return printable(word);
}

std::string colouredWordOf(const qx::QXColorTag& tag) {
  const Colour* colour = colourOf(tag.color());
  return colour == nullptr ? wordOf(tag) : colour->sequence + wordOf(tag) + "\033[0m";
}

bool isSameName(const qx::QXColorTag& a, const qx::QXColorTag& b) {
  const auto decomposed = [](const qx::QXColorTag& tag) {
    const auto plain = qx::QXColorTag::initWithName(nullptr, 0);
    plain->setName(tag.name());
    return plain;
  };
  return decomposed(a)->isEqual(decomposed(b));
}

}  // namespace qxtool
