// Eight times the format takes about eight times the time: quadratic work would take sixty-four.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_explanation.h>

#include "tests/qualifiers/parse.h"
#include "tests/support/processor_time.h"

namespace qx {
namespace {

std::string formatOf(int comparisons) {
  std::string format = "a = b";
  for (int i = 1; i < comparisons; ++i) format += i % 2 == 0 ? " or a = b" : " and a = b";
  return format;
}

// The least of several, in seconds: what else the machine does only adds.
template <class Work>
double leastTime(const Work& work) {
  double least = 1e9;
  for (int round = 0; round < 5; ++round) {
    least = std::min(least, processorTimeOf(work));
  }
  return least;
}

template <class Work>
double growth(const Work& work) {
  const std::string few = formatOf(10000);
  const std::string many = formatOf(80000);
  return leastTime([&] { work(many); }) / leastTime([&] { work(few); });
}

TEST(FormatSize, LongFormatsTakeLinearTime) {
  EXPECT_LT(growth([](const std::string& format) { (void)parse(format); }), 30);
}

TEST(FormatSize, ExplainingLongFormatsTakesLinearTime) {
  EXPECT_LT(growth([](const std::string& format) {
              (void)QXQualifier::explainQualifierFormat(runtimeFormat(format));
            }),
            30);
}

TEST(FormatSize, ExplainingTheResultTakesLinearTime) {
  const auto object = dict({{"a", 1}, {"b", 1}});
  const auto time = [&](int members) {
    const auto list = MutableArray::init();
    const auto member = parse("a = b");
    for (int i = 0; i < members; ++i) list->addObject(member);
    const auto q = QXAndQualifier::initWithQualifierArray(list);
    return leastTime([&] { (void)explain(q, object); });
  };
  const double few = time(10000);
  EXPECT_LT(time(80000) / few, 30);
}

TEST(FormatSize, LongFormatsKeepTheirMeaning) {
  const auto q = parse(formatOf(100001));
  EXPECT_FALSE(q->evaluateWithObject(dict({{"a", 1}, {"b", 2}})));
  EXPECT_TRUE(q->evaluateWithObject(dict({{"a", 1}, {"b", 1}})));
}

}  // namespace
}  // namespace qx
