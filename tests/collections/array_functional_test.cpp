#include <gtest/gtest.h>

#include <QXFoundation/array_functional.h>
#include <QXFoundation/exception.h>

#include "tests/collections/sample_objects.h"

namespace {

using qx::array;
using qx::PropertyValue;
using Value = const PropertyValue&;

PropertyValue itself(Value e) { return e; }

TEST(ArrayFunctional, EmptyArraysCallNoBlock) {
  const auto none = qx::Array::init();
  const auto fail = [](Value) -> PropertyValue { throw std::logic_error("called"); };
  const auto failBool = [](Value) -> bool { throw std::logic_error("called"); };
  const auto failTwo = [](Value, Value) -> PropertyValue { throw std::logic_error("called"); };
  const qx::Class& any = qx::classOf<qx::Object>();
  EXPECT_EQ(qxMap(none, fail)->count(), 0U);
  EXPECT_EQ(qxMap(none, fail, any)->count(), 0U);
  EXPECT_EQ(qxFilter(none, failBool)->count(), 0U);
  EXPECT_EQ(qxFilter(none, failBool, any)->count(), 0U);
  EXPECT_EQ(qxFlatMap(none, fail)->count(), 0U);
  EXPECT_EQ(qxFlatMap(none, fail, any)->count(), 0U);
  EXPECT_EQ(qxReduce(none, 7, failTwo), 7);
  EXPECT_EQ(qxReduce(none, nullptr, failTwo), nullptr);
  EXPECT_EQ(qxReduce(none, 7, failTwo, any), 7);
  EXPECT_FALSE(qxContains(none, failBool));
  EXPECT_FALSE(qxContains(none, failBool, any));
  qxForEach(none, fail);
  qxForEach(none, fail, any);
}

TEST(ArrayFunctional, NilArraysGiveNil) {
  const qx::Ref<qx::Array> nil;
  EXPECT_EQ(qxMap(nil, itself), nullptr);
  EXPECT_EQ(qxFilter(nil, [](Value) { return true; }), nullptr);
  EXPECT_EQ(qxFlatMap(nil, itself), nullptr);
  EXPECT_EQ(qxReduce(nil, 7, [](Value v, Value) { return v; }), nullptr);
  EXPECT_FALSE(qxContains(nil, [](Value) { return true; }));
  qxForEach(nil, [](Value) { FAIL(); });
}

TEST(ArrayFunctional, OnlyExactlyOneIsYes) {
  const auto a = array(1, 2, 3);
  EXPECT_EQ(qxFilter(a, [](Value) -> unsigned char { return 2; })->count(), 0U);
  EXPECT_EQ(qxFilter(a, [](Value) -> signed char { return -1; })->count(), 0U);
  EXPECT_EQ(qxFilter(a, [](Value) { return 257; })->count(), 0U);
  EXPECT_EQ(qxFilter(a, [](Value) -> unsigned char { return 1; })->count(), 3U);
  EXPECT_EQ(qxFilter(a, [](Value) { return true; })->count(), 3U);
  EXPECT_EQ(qxFilter(a, [](Value) { return 2; }, qx::classOf<qx::Number>())->count(), 0U);
  EXPECT_FALSE(qxContains(a, [](Value) -> unsigned char { return 2; }));
  EXPECT_FALSE(qxContains(a, [](Value) { return 2; }, qx::classOf<qx::Number>()));
  EXPECT_TRUE(qxContains(a, [](Value) -> unsigned char { return 1; }));
  // An answer of many bytes is not cut to one; a character is a byte.
  EXPECT_FALSE(qxContains(a, [](Value) { return std::int64_t{1} << 32 | 1; }));
  EXPECT_FALSE(qxContains(a, [](Value) { return '1'; }));
  EXPECT_EQ(qxFilter(a, [](Value) { return '\1'; })->count(), 3U);
  const auto byteOf = [](Value e) { return static_cast<unsigned char>(e.intValue()); };
  EXPECT_EQ(PropertyValue(qxFilter(a, byteOf)), array(1));
  EXPECT_EQ(PropertyValue(qxFilter(array("x", 1, 2), byteOf, qx::classOf<qx::Number>())), array(1));
  // The search goes on behind an answer that is no yes.
  EXPECT_TRUE(qxContains(array(2, 255, 1), byteOf));
  EXPECT_TRUE(qxContains(array(2, 1), byteOf, qx::classOf<qx::Number>()));
}

TEST(ArrayFunctional, FlatMapTransformsWhatItFlattens) {
  EXPECT_EQ(PropertyValue(qxFlatMap(array(1, array(2, 3)), itself)), array(1, 2, 3));
  EXPECT_EQ(PropertyValue(qxFlatMap(array(array(array(1))), itself)), array(1));
  const auto mixed = array("a", array("b", 1));
  EXPECT_EQ(PropertyValue(qxFlatMap(mixed, itself, qx::classOf<qx::String>())), array("a", "b"));
  // Each level of arrays passes the transform once more.
  const auto countDown = [](Value e) {
    return e.isNumber() && e.intValue() > 0 ? PropertyValue(array(e.intValue() - 1, "x")) : e;
  };
  EXPECT_EQ(PropertyValue(qxFlatMap(array(3), countDown)), array(0, "x", "x", "x"));
  EXPECT_EQ(
      PropertyValue(qxFlatMap(array(1, 2), [](Value e) { return e == 1 ? PropertyValue() : e; })),
      array(2));
}

TEST(ArrayFunctional, FlatMapGoesAsDeepAsTheDataWithoutTheStack) {
  qx::Ref<qx::Array> nested = array("leaf");
  for (int i = 0; i < 1'000'000; ++i) nested = array(nested);
  EXPECT_EQ(PropertyValue(qxFlatMap(nested, itself)), array("leaf"));
}

TEST(ArrayFunctional, FlatMapOfATransformWithoutEndRaises) {
  const auto again = array("more");
  EXPECT_THROW((void)qxFlatMap(array(1), [&](Value) { return again; }),
               qx::InvalidArgumentException);
}

TEST(ArrayFunctional, FlatMapOfAClassTestsResultsNotElements) {
  const auto lengthOrSelf = [](Value e) {
    return e.isString() ? PropertyValue(e.as<qx::String>()->length()) : e;
  };
  // Strings pass the transform although they are no numbers; what is no number afterwards goes.
  EXPECT_EQ(PropertyValue(qxFlatMap(array("ab", qx::null, array("c", 7)), lengthOrSelf,
                                    qx::classOf<qx::Number>())),
            array(2, 1, 7));
  // Arrays are walked, also where the class is theirs.
  EXPECT_EQ(
      qxFlatMap(array(array(1), array(array("x"))), itself, qx::classOf<qx::Array>())->count(), 0U);
  const auto nilForOne = [](Value e) { return e == 1 ? PropertyValue() : e; };
  EXPECT_EQ(
      PropertyValue(qxFlatMap(array(1, 2, array(1, 3)), nilForOne, qx::classOf<qx::Object>())),
      array(2, 3));
}

TEST(ArrayFunctional, ReduceKeepsToItsClass) {
  const auto add = [](Value v, Value e) { return v.intValue() + e.intValue(); };
  EXPECT_EQ(qxReduce(array(1, 2, 3), 0, add), 6);
  EXPECT_EQ(qxReduce(array("a", "b"), 0, add, qx::classOf<qx::String>()), 0);
  // Elements of other classes are passed over.
  EXPECT_EQ(qxReduce(array(1, "x", 2, qx::null, 3), 10, add, qx::classOf<qx::Number>()), 16);
  EXPECT_EQ(qxReduce(array(1, 2), nullptr, add, qx::classOf<qx::Number>()), nullptr);
  // A step that leaves the class is the last one.
  const auto toNull = [](Value v, Value e) {
    return e == 2 ? PropertyValue(qx::null) : PropertyValue(v.intValue() + e.intValue());
  };
  EXPECT_EQ(qxReduce(array(1, 2, 3), 0, toNull, qx::classOf<qx::Number>()),
            PropertyValue(qx::null));
}

TEST(ArrayFunctional, ReduceHoldsTheValueBetweenSteps) {
  const auto grown = qxReduce(array("a", "b", "c"), qx::Array::init(), [](Value v, Value e) {
    return v.as<qx::Array>()->arrayByAddingObject(e);
  });
  EXPECT_EQ(grown, PropertyValue(array("a", "b", "c")));
}

TEST(ArrayFunctional, ContainsStopsAtTheFirstYes) {
  int calls = 0;
  EXPECT_TRUE(qxContains(array(1, 2, 3), [&](Value e) { return ++calls, e == 2; }));
  EXPECT_EQ(calls, 2);
}

TEST(ArrayFunctional, ContainsOfAClassAsksForItsElementsAlone) {
  std::string asked;
  const auto isB = [&](Value e) {
    asked += e.description();
    return e == "b";
  };
  EXPECT_TRUE(qxContains(array(1, "a", qx::null, "b", "c"), isB, qx::classOf<qx::String>()));
  EXPECT_EQ(asked, "ab");
  EXPECT_FALSE(qxContains(array("b"), isB, qx::classOf<qx::Number>()));
  EXPECT_EQ(asked, "ab");
}

TEST(ArrayFunctional, NilIsAValueBetweenSteps) {
  const auto last = qxReduce(array(1, 2, 3), 0, [](Value v, Value e) {
    return e == 2 ? PropertyValue() : v.isNil() ? PropertyValue("after nil") : e;
  });
  EXPECT_EQ(last, "after nil");
}

TEST(ArrayFunctional, MapThatGivesNilRaises) {
  EXPECT_THROW((void)qxMap(array(1), [](Value) { return nullptr; }), qx::InvalidArgumentException);
  EXPECT_THROW((void)qxMap(
                   array(1), [](Value) { return PropertyValue(); }, qx::classOf<qx::Number>()),
               qx::InvalidArgumentException);
}

TEST(ArrayFunctional, MapRaisesAtTheElementThatGivesNil) {
  int calls = 0;
  const auto nilForSecond = [&](Value e) { return ++calls == 2 ? PropertyValue() : e; };
  EXPECT_THROW((void)qxMap(array("a", "b", "c"), nilForSecond), qx::InvalidArgumentException);
  EXPECT_EQ(calls, 2);
}

TEST(ArrayFunctional, BlocksMayTakeIndexAndStopFlag) {
  const auto a = array("a", "b", "c", "d");
  const auto upToSecond = [](Value e, std::size_t index, bool& stop) {
    stop = index == 1;
    return e.as<qx::String>()->stringByAppendingString(std::to_string(index));
  };
  EXPECT_EQ(PropertyValue(qxMap(a, upToSecond)), array("a0", "b1"));
  EXPECT_EQ(PropertyValue(qxFilter(a,
                                   [](Value, std::size_t index, bool& stop) {
                                     stop = index == 2;
                                     return index != 1;
                                   })),
            array("a", "c"));
  EXPECT_EQ(qxReduce(a, 0,
                     [](Value v, Value, std::size_t index, bool& stop) {
                       stop = index == 2;
                       return v.intValue() + static_cast<int>(index);
                     }),
            3);
  EXPECT_FALSE(qxContains(a, [](Value e, std::size_t, bool& stop) {
    stop = true;
    return e == "b";
  }));
  std::string seen;
  qxForEach(a, [&](Value e, std::size_t index, bool& stop) {
    seen += e.description() + std::to_string(index);
    stop = index == 2;
  });
  EXPECT_EQ(seen, "a0b1c2");
}

TEST(ArrayFunctional, FilterKeepsTheSameOfAnyCount) {
  for (const std::size_t count : {1U, 15U, 16U, 17U, 127U, 128U, 129U, 300U, 1000U}) {
    const auto all = qx::MutableArray::init();
    for (std::size_t i = 0; i < count; ++i) all->addObject("name " + std::to_string(i));
    for (const std::size_t every : {1U, 2U, 7U, 128U, 5000U}) {
      for (const std::size_t end : {std::size_t{0}, count / 2, count}) {
        std::vector<PropertyValue> expected;
        for (std::size_t i = 0; i <= end && i < count; ++i) {
          if (i % every == 0) expected.push_back(all->objectAtIndex(i));
        }
        const auto kept = qxFilter(all, [&](Value, std::size_t index, bool& stop) {
          stop = index == end;
          return index % every == 0;
        });
        EXPECT_TRUE(PropertyValue(kept) == qx::Array::from(expected.data(), expected.size()))
            << count << " " << every << " " << end;
      }
    }
  }
}

TEST(ArrayFunctional, FilterThatRaisesLeavesElementsAsTheyWere) {
  const auto all = qx::MutableArray::init();
  for (int i = 0; i < 200; ++i) all->addObject("name " + std::to_string(i));
  const auto last = all->lastObject();
  const auto raises = [&](Value e) -> bool {
    if (e == last) throw qx::GenericException("stop");
    return true;
  };
  for (int i = 0; i < 3; ++i) EXPECT_THROW((void)qxFilter(all, raises), qx::GenericException);
  EXPECT_EQ(all->objectAtIndex(7), "name 7");
  EXPECT_EQ(qxFilter(all, [](Value) { return true; })->count(), 200U);
}

TEST(ArrayFunctional, MapThatStopsGivesWhatItHas) {
  const auto all = qx::MutableArray::init();
  for (int i = 0; i < 100; ++i) all->addObject("name " + std::to_string(i));
  for (const std::size_t last : {0U, 1U, 88U, 89U, 98U, 99U}) {
    const auto mapped = qxMap(all, [&](Value e, std::size_t index, bool& stop) {
      stop = index == last;
      return e;
    });
    EXPECT_TRUE(PropertyValue(mapped) == qx::Array::from(all->begin(), last + 1)) << last;
  }
}

TEST(ArrayFunctional, StoppingWithinAnArrayEndsThatArrayAlone) {
  const auto stopAtTwo = [](Value e, std::size_t, bool& stop) {
    stop = e == 2;
    return e;
  };
  EXPECT_EQ(PropertyValue(qxFlatMap(array(1, array(2, 3), 4), stopAtTwo)), array(1, 2, 4));
  // An element that stops and gives an array still has that array walked.
  const auto stopAtArray = [](Value e, std::size_t, bool& stop) {
    stop = e.isArray();
    return e;
  };
  EXPECT_EQ(PropertyValue(qxFlatMap(array(array(1, 2), 3), stopAtArray)), array(1, 2));
}

TEST(ArrayFunctional, ClassFormsTakeInstancesOfSubclassesToo) {
  const auto s = qx::MutableString::from("m");
  const auto a = array("s", s, 1, qx::null, array("x"));
  EXPECT_EQ(PropertyValue(qxMap(a, itself, qx::classOf<qx::String>())), array("s", "m"));
  EXPECT_EQ(PropertyValue(qxFilter(
                a, [](Value) { return true; }, qx::classOf<qx::MutableString>())),
            array("m"));
  int count = 0;
  qxForEach(a, [&](Value) { ++count; }, qx::classOf<qx::Object>());
  EXPECT_EQ(count, 5);
}

TEST(ArrayFunctional, BlocksMayChangeTheArray) {
  const auto a = qx::MutableArray::init();
  for (int i = 0; i < 100; ++i) a->addObject(std::to_string(i));
  const auto mapped = qxMap(a, [&](Value e) {
    a->removeAllObjects();
    return e.as<qx::String>()->stringByAppendingString("!");
  });
  EXPECT_EQ(mapped->count(), 100U);
  EXPECT_EQ(mapped->lastObject(), "99!");
  EXPECT_EQ(a->count(), 0U);
}

TEST(ArrayFunctional, BlocksMayLetGoOfTheArray) {
  qx::Ref<qx::Array> a = array("x", "y");
  int calls = 0;
  qxForEach(a, [&](Value e) {
    a = nullptr;
    calls += e.isString() ? 1 : 0;
  });
  EXPECT_EQ(calls, 2);
}

TEST(ArrayFunctional, ExceptionsOfBlocksPassThrough) {
  const auto a = array("x", "y", "z");
  EXPECT_THROW((void)qxMap(a,
                           [](Value e) -> PropertyValue {
                             if (e == "y") throw std::runtime_error("no");
                             return e;
                           }),
               std::runtime_error);
}

TEST(ArrayFunctional, ResultsAreImmutable) {
  const auto a = qx::MutableArray::init();
  a->addObject(1);
  EXPECT_EQ(qxMap(a, itself)->cls().name(), std::string("NSArray"));
  EXPECT_EQ(qxFilter(a, [](Value) { return true; })->cls().name(), std::string("NSArray"));
  EXPECT_EQ(qxFlatMap(a, itself)->cls().name(), std::string("NSArray"));
}

}  // namespace
