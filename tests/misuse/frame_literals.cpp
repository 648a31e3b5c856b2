// Characters and texts of other encodings than UTF-8 bytes are neither values nor texts nor keys.

#include <QXFoundation/string.h>

namespace {

[[maybe_unused]] void rightUse() {
  (void)qx::PropertyValue("n\xC3\xA4h");
  (void)qx::String::from("n\xC3\xA4h");
  (void)qx::PropertyValue(qx::String::fromUtf16(u"n\u00E4h"));
}

#if MISUSE == 1
// EXPECT-ERROR(wchar_t as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(wchar_t c) { return c; }
#elif MISUSE == 2
// EXPECT-ERROR(char8_t as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(char8_t c) { return c; }
#elif MISUSE == 3
// EXPECT-ERROR(char32_t as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(char32_t c) { return c; }
#elif MISUSE == 4
// EXPECT-ERROR(char8_t literal as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f() { return u8"text"; }
#elif MISUSE == 5
// EXPECT-ERROR(wide literal as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f() { return L"text"; }
#elif MISUSE == 6
// EXPECT-ERROR(UTF-16 literal as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f() { return u"text"; }
#elif MISUSE == 7
// EXPECT-ERROR(UTF-32 literal as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f() { return U"text"; }
#elif MISUSE == 8
// EXPECT-ERROR(char8_t literal as text): (no viable conversion|could not convert|cannot convert|no known conversion)
qx::Ref<qx::String> f() { return qx::String::from(u8"text"); }
#elif MISUSE == 9
// EXPECT-ERROR(wide literal as text): (no viable conversion|could not convert|cannot convert|no known conversion)
qx::Ref<qx::String> f() { return qx::String::from(L"text"); }
#elif MISUSE == 10
// EXPECT-ERROR(UTF-16 literal as key): (no viable conversion|could not convert|cannot convert|no known conversion|no match for|no viable overloaded)
qx::PropertyValue f(const qx::PropertyValue& v) { return v[u"key"]; }
#elif MISUSE == 11
// EXPECT-ERROR(UTF-16 text as value): (no viable conversion|could not convert|cannot convert|conversion from)
qx::PropertyValue f(std::u16string_view text) { return text; }
#endif

}  // namespace
