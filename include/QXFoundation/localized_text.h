// Translation of the library's sentences for people.
//
//     qx::setTranslation([](const std::string& text) { return lookUp(text); });
//     qx::localizedText("Failed to set one or more extended attributes.");
#pragma once

#include <string>

#include <QXFoundation/export.h>

namespace qx {

// Gives the translation of a text, which is its own key; the text itself where there is none.
using Translation = std::string (*)(const std::string& text);

// Installs what translates from now on; null takes it away again. Without one, texts stay as they
// are. Thread-safe, as far as the function itself is.
QX_EXPORT void setTranslation(Translation translation);

// The text as it is shown to people.
QX_EXPORT std::string localizedText(const std::string& text);

}  // namespace qx
