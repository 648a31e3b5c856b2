#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/formatter.h>

#include "tests/frame/raises.h"

namespace qx {
namespace {

// Both ways: "7 C" and 7.
class Celsius : public Formatter {
 public:
  PropertyValue stringForObjectValue(const PropertyValue& value) const override {
    return value.isNumber() ? PropertyValue(value.description() + " C") : PropertyValue();
  }
  bool getObjectValue(PropertyValue* object, StringArg forString,
                      Ref<String>* errorDescription) const override {
    const std::string text = forString.utf8();
    if (text.ends_with(" C")) {
      if (object != nullptr) *object = PropertyValue(text).integerValue();
      return true;
    }
    if (errorDescription != nullptr) *errorDescription = String::from("not a temperature");
    return false;
  }
};
void describe(ClassBuilder<Celsius>& c) { c.name("CelsiusFormatter").inherits<Formatter>(); }

class Unfinished : public Formatter {};
void describe(ClassBuilder<Unfinished>& c) { c.name("UnfinishedFormatter").inherits<Formatter>(); }

TEST(Formatter, IsABaseForTheApplicationsOwn) {
  const Ref<Formatter> f = make<Celsius>();
  EXPECT_EQ(f->stringForObjectValue(7), "7 C");
  EXPECT_TRUE(f->stringForObjectValue("7").isNil());
  EXPECT_EQ(performSelector(f, "stringForObjectValue:", 7), "7 C");
  PropertyValue object;
  Ref<String> why;
  EXPECT_TRUE(f->getObjectValue(&object, "12 C", &why));
  EXPECT_EQ(object, 12);
  EXPECT_EQ(why, nullptr);
  EXPECT_FALSE(f->getObjectValue(&object, "12", &why));
  EXPECT_EQ(object, 12);
  EXPECT_EQ(why->utf8(), "not a temperature");
}

TEST(Formatter, HasOnlyPlainTextUnlessASubclassHasMore) {
  const auto f = make<Celsius>();
  EXPECT_EQ(f->attributedStringForObjectValue(7, dict()), nullptr);
  EXPECT_TRUE(performSelector(f, "attributedStringForObjectValue:withDefaultAttributes:", 7, dict())
                  .isNil());
}

TEST(Formatter, RaisesWhereASubclassHasNotItsOwn) {
  const auto f = make<Unfinished>();
  EXPECT_EQ(reasonOf<InvalidArgumentException>([&] { (void)f->stringForObjectValue(1); }),
            "-[UnfinishedFormatter stringForObjectValue:]: the receiver has no such operation");
  EXPECT_EQ(
      reasonOf<InvalidArgumentException>([&] { (void)f->getObjectValue(nullptr, "", nullptr); }),
      "-[UnfinishedFormatter getObjectValue:forString:errorDescription:]: the receiver has no such "
      "operation");
}

TEST(Formatter, IsFoundByName) {
  EXPECT_EQ(classNamed("NSFormatter"), &classOf<Formatter>());
  EXPECT_TRUE(PropertyValue(make<Celsius>()).isKindOfClass(classOf<Formatter>()));
}

}  // namespace
}  // namespace qx
