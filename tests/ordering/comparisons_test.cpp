#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

namespace comparisons {

// Answers what it was made with.
class Fixed : public qx::Object {
 public:
  explicit Fixed(qx::PropertyValue a) : answer(std::move(a)) {}
  qx::PropertyValue compare(const qx::PropertyValue&) const { return answer; }
  qx::PropertyValue answer;
};
void describe(qx::ClassBuilder<Fixed>& c) {
  c.name("ComparisonsFixed").operation("compare:", &Fixed::compare);
  c.operation("caseInsensitiveCompare:", &Fixed::compare);
}

class Silent : public qx::Object {};
void describe(qx::ClassBuilder<Silent>& c) { c.name("ComparisonsSilent"); }

class Loud : public qx::Object {
 public:
  int answer(const qx::PropertyValue&) const { return 77; }
};
void describe(qx::ClassBuilder<Loud>& c) {
  c.name("ComparisonsLoud").operation("compareDescending:", &Loud::answer);
}

}  // namespace comparisons

namespace {

using qx::PropertyValue;

struct Case {
  PropertyValue receiver;
  PropertyValue other;
  int ascending;
};

TEST(Comparisons, OrderNumbersTextsAndDates) {
  const auto early = qx::Date::dateWithTimeIntervalSince1970(1);
  const auto late = qx::Date::dateWithTimeIntervalSince1970(2);
  for (const Case& c :
       {Case{1, 2, -1}, Case{2, 1, 1}, Case{2, 2.0, 0}, Case{true, 1, 0}, Case{"a", "b", -1},
        Case{"a", "B", 1}, Case{"a", "a", 0}, Case{early, late, -1}}) {
    EXPECT_EQ(qx::compareAscending(c.receiver, c.other), c.ascending);
    EXPECT_EQ(qx::compareDescending(c.receiver, c.other), -c.ascending);
    EXPECT_EQ(qx::performSelector(c.receiver, "compareAscending:", c.other), c.ascending);
    EXPECT_EQ(qx::performSelector(c.receiver, "compareDescending:", c.other), -c.ascending);
  }
}

TEST(Comparisons, IgnoreCaseWhereAsked) {
  EXPECT_EQ(qx::compareCaseInsensitiveAscending("a", "B"), -1);
  EXPECT_EQ(qx::compareCaseInsensitiveDescending("a", "B"), 1);
  EXPECT_EQ(qx::compareCaseInsensitiveAscending("STRASSE", "straße"), 0);
  EXPECT_EQ(qx::performSelector("a", "compareCaseInsensitiveAscending:", "B"), -1);
  EXPECT_EQ(qx::performSelector("a", "compareCaseInsensitiveDescending:", "B"), 1);
}

TEST(Comparisons, AnArgumentWithoutTheComparisonIsTheSame) {
  for (const PropertyValue& other :
       {PropertyValue(), PropertyValue(qx::null), PropertyValue(qx::array()),
        PropertyValue(qx::dict()), PropertyValue(qx::Data::from("x")),
        PropertyValue(qx::make<comparisons::Silent>()), PropertyValue(qx::classOf<qx::String>())}) {
    for (const PropertyValue& receiver :
         {PropertyValue(1), PropertyValue("a"), PropertyValue(qx::null), PropertyValue(qx::array()),
          PropertyValue(qx::make<comparisons::Silent>())}) {
      EXPECT_EQ(qx::compareAscending(receiver, other), 0);
      EXPECT_EQ(qx::compareDescending(receiver, other), 0);
      EXPECT_EQ(qx::compareCaseInsensitiveAscending(receiver, other), 0);
      EXPECT_EQ(qx::compareCaseInsensitiveDescending(receiver, other), 0);
    }
  }
  EXPECT_EQ(qx::compareCaseInsensitiveAscending("a", 1), 0);
}

TEST(Comparisons, AReceiverWithoutTheComparisonRaises) {
  for (const PropertyValue& receiver : {PropertyValue(qx::null), PropertyValue(qx::array()),
                                        PropertyValue(qx::make<comparisons::Silent>())}) {
    EXPECT_THROW(qx::compareAscending(receiver, 1), qx::InvalidArgumentException);
    EXPECT_THROW(qx::compareDescending(receiver, "a"), qx::InvalidArgumentException);
    EXPECT_THROW(qx::compareCaseInsensitiveAscending(receiver, "a"), qx::InvalidArgumentException);
  }
  EXPECT_THROW(qx::compareCaseInsensitiveDescending(5, "a"), qx::InvalidArgumentException);
  EXPECT_THROW(qx::performSelector(qx::null, "compareAscending:", 1), qx::InvalidArgumentException);
}

TEST(Comparisons, ValuesWithoutACommonOrderRaise) {
  EXPECT_THROW(qx::compareAscending(1, "a"), qx::InvalidArgumentException);
  EXPECT_THROW(qx::compareAscending("a", 1), qx::InvalidArgumentException);
}

TEST(Comparisons, ANilReceiverIsTheSame) {
  EXPECT_EQ(qx::compareAscending(nullptr, 1), 0);
  EXPECT_EQ(qx::compareCaseInsensitiveDescending(nullptr, "a"), 0);
}

TEST(Comparisons, OtherAnswersOfAClassPassUnchanged) {
  struct Answer {
    PropertyValue given;
    int ascending;
    int descending;
  };
  for (const Answer& a :
       {Answer{-1, -1, 1}, Answer{1, 1, -1}, Answer{0, 0, 0}, Answer{2, 2, 2}, Answer{-2, -2, -2},
        Answer{1000, 1000, 1000}, Answer{std::int64_t{1} << 40, 2147483647, 2147483647},
        Answer{nullptr, 0, 0}}) {
    const auto receiver = qx::make<comparisons::Fixed>(a.given);
    EXPECT_EQ(qx::compareAscending(receiver, 1), a.ascending);
    EXPECT_EQ(qx::compareDescending(receiver, 1), a.descending);
    EXPECT_EQ(qx::compareCaseInsensitiveAscending(receiver, receiver), a.ascending);
    EXPECT_EQ(qx::compareCaseInsensitiveDescending(receiver, receiver), a.descending);
    EXPECT_EQ(qx::performSelector(receiver, "compareDescending:", 1), a.descending);
  }
}

TEST(Comparisons, AClassMayDeclareThemItself) {
  const auto loud = qx::make<comparisons::Loud>();
  EXPECT_EQ(qx::compareDescending(loud, 1), 77);
  EXPECT_EQ(qx::performSelector(loud, "compareDescending:", 1), 77);
  EXPECT_THROW(qx::compareAscending(loud, 1), qx::InvalidArgumentException);
}

TEST(Comparisons, EveryObjectPerformsThem) {
  for (const PropertyValue& v :
       {PropertyValue(1), PropertyValue("a"), PropertyValue(qx::null), PropertyValue(qx::dict()),
        PropertyValue(qx::make<comparisons::Silent>()), PropertyValue(qx::classOf<qx::Array>())}) {
    for (const char* name :
         {"compareAscending:", "compareDescending:", "compareCaseInsensitiveAscending:",
          "compareCaseInsensitiveDescending:"}) {
      EXPECT_TRUE(v.respondsToSelector(qx::Selector::named(name)));
    }
  }
}

}  // namespace
