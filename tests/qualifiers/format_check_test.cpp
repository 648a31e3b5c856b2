// What the compiler accepts, and how arguments of C++ types arrive. What it refuses stands in
// tests/misuse.

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include <QXFoundation/exception.h>
#include <QXFoundation/number.h>
#include <QXFoundation/qualifier.h>

#include "tests/qualifiers/tree_text.h"

namespace qx {
namespace {

namespace f = detail::format;
using Kind = f::ArgumentKind;
using f::Fault;

consteval Fault check(std::string_view format) { return f::firstFault(format, nullptr, 0); }
consteval Fault check(std::string_view format, Kind kind) {
  return f::firstFault(format, &kind, 1);
}

static_assert(check("") == Fault::none);
static_assert(check("   ") == Fault::none);
static_assert(check("a = b and c < d or not e = 'x'") == Fault::none);
static_assert(check("anything , goes = here ?") == Fault::none);
static_assert(check("a = 50%%") == Fault::none);
static_assert(check("a = '50%d'") == Fault::none);
static_assert(check("a = %d") == Fault::missingArgument);
static_assert(check("a = 'x' and b = %d") == Fault::none, "what follows quoted text is not read");
static_assert(check("a = %") == Fault::unrecognized);
static_assert(check("a = %i") == Fault::unrecognized);
static_assert(check("%x = 3") == Fault::unrecognized);
static_assert(check("a = %\xC3\xA4") == Fault::unrecognized);
static_assert(check("a = %d", Kind::integer) == Fault::none);
static_assert(check("a = %d", Kind::any) == Fault::none);
static_assert(check("a = %d", Kind::boolean) == Fault::wantsInteger);
static_assert(check("a = %d", Kind::floating) == Fault::wantsInteger);
static_assert(check("a = %d", Kind::text) == Fault::wantsInteger);
static_assert(check("a = %f", Kind::floating) == Fault::none);
static_assert(check("a = %f", Kind::integer) == Fault::wantsFloating);
static_assert(check("a = %s", Kind::text) == Fault::none);
static_assert(check("a = %s", Kind::integer) == Fault::wantsText);
static_assert(check("a = %s", Kind::other) == Fault::wantsText);
static_assert(check("a = %@", Kind::other) == Fault::none);
static_assert(check("a = %@ and b = %@", Kind::any) == Fault::missingArgument);
static_assert(check("k%s = %d", Kind::text) == Fault::missingArgument);
static_assert(check("a = (NSString)%d", Kind::integer) == Fault::none);
static_assert(check("a = b", Kind::integer) == Fault::none, "arguments may be left over");

static_assert(f::argumentKind<bool>() == Kind::boolean);
static_assert(f::argumentKind<int&>() == Kind::integer);
static_assert(f::argumentKind<std::size_t>() == Kind::integer);
static_assert(f::argumentKind<unsigned char>() == Kind::integer);
static_assert(f::argumentKind<float>() == Kind::floating);
static_assert(f::argumentKind<const char (&)[3]>() == Kind::text);
static_assert(f::argumentKind<const char*>() == Kind::text);
static_assert(f::argumentKind<std::string&>() == Kind::text);
static_assert(f::argumentKind<StringArg>() == Kind::text);
static_assert(f::argumentKind<Ref<String>>() == Kind::text);
static_assert(f::argumentKind<Ref<MutableString>&>() == Kind::text);
static_assert(f::argumentKind<String*>() == Kind::text);
static_assert(f::argumentKind<Ref<Object>>() == Kind::any);
static_assert(f::argumentKind<Ref<Number>>() == Kind::any);
static_assert(f::argumentKind<PropertyValue>() == Kind::any);
static_assert(f::argumentKind<const PropertyValue&>() == Kind::any);
static_assert(f::argumentKind<Ref<Array>>() == Kind::other);
static_assert(f::argumentKind<std::nullptr_t>() == Kind::other);
static_assert(f::argumentKind<const Null&>() == Kind::other);

TEST(FormatCheck, ArgumentsArriveWithTheirKind) {
  const std::string text = "t";
  const std::string_view view = "v";
  const PropertyValue value = 7;
  const Ref<Number> number = PropertyValue(8).as<Number>();
  const auto q = qualifierWithQualifierFormat(
      "a = %d and b = %d and c = %f and d = %f and e = %s and f = %s and g = %s and h = %@ and i = "
      "%@ and j = %@ and "
      "k = %@ and l = %d and m = %d and n = %@",
      1, 2UL, 0.5F, 0.25, text, view, "lit", true, nullptr, null, text, value, number,
      String::from("o"));
  EXPECT_EQ(treeText(q),
            "and(kv(a = 1), kv(b = 2), kv(c = 0.5f), kv(d = 0.25f), kv(e = \"t\"), kv(f = \"v\"), "
            "kv(g = \"lit\"), "
            "kv(h = true), kv(i = nil), kv(j = null), kv(k = \"t\"), kv(l = 7), kv(m = 8), kv(n = "
            "\"o\"))");
}

TEST(FormatCheck, BothFormsAreOne) {
  EXPECT_EQ(treeText(QXQualifier::qualifierWithQualifierFormat("a = %d", 1)), "kv(a = 1)");
  EXPECT_EQ(treeText(qualifierWithQualifierFormat(runtimeFormat(std::string("a = %d")), 1)),
            "kv(a = 1)");
  EXPECT_EQ(treeText(qualifierWithQualifierFormat(runtimeFormat(String::from("a = b")))),
            "kc(a = b)");
  static constexpr char kFormat[] = "a = %s";
  EXPECT_EQ(treeText(qualifierWithQualifierFormat(kFormat, "x")), "kv(a = \"x\")");
}

TEST(FormatCheck, WhatTheCompilerCanNotSeeRaises) {
  EXPECT_THROW((void)qualifierWithQualifierFormat("a = %d", std::int64_t{1} << 40),
               InvalidArgumentException);
  EXPECT_THROW((void)qualifierWithQualifierFormat("a = %d", PropertyValue("x")),
               InvalidArgumentException);
  EXPECT_THROW((void)qualifierWithQualifierFormat("a = %s", static_cast<const char*>(nullptr)),
               InvalidArgumentException);
  EXPECT_THROW((void)qualifierWithQualifierFormat(runtimeFormat("a = %d")),
               InvalidArgumentException);
  EXPECT_THROW((void)qualifierWithQualifierFormat(runtimeFormat("a = %d"), "x"),
               InvalidArgumentException);
}

}  // namespace
}  // namespace qx
