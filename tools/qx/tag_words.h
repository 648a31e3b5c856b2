// Tags as words of the command line: NAME, or NAME:COLOUR.
#pragma once

#include <string>
#include <string_view>

#include <QXFoundation/color_tag.h>

namespace qxtool {

// For messages and help.
inline constexpr char kColourNames[] = "grey, green, purple, blue, yellow, red or orange";

// A colour stands behind the last colon, as a number or one of these names; nothing there, or no
// colon at all, is no colour. A Failure for other colours, and for names that can not be stored.
qx::Ref<qx::QXColorTag> tagFromWord(const std::string& word);

// The word that is read as this tag, made printable.
std::string wordOf(const qx::QXColorTag& tag);
// The same in its colour, for a terminal.
std::string colouredWordOf(const qx::QXColorTag& tag);

// Names are the same regardless of case, and of how their accents are encoded.
bool isSameName(const qx::QXColorTag& a, const qx::QXColorTag& b);

}  // namespace qxtool
