#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

namespace {

using qx::SortDescriptor;

TEST(SortDescriptor, ComparesWhatIsUnderTheKeyPath) {
  const auto near = qx::dict({{"at", qx::dict({{"km", 2}})}});
  const auto far = qx::dict({{"at", qx::dict({{"km", 10}})}});
  const auto byDistance = SortDescriptor::sortDescriptorWithKey("at.km", true);
  EXPECT_EQ(byDistance->compareObject(near, far), -1);
  EXPECT_EQ(byDistance->compareObject(far, near), 1);
  EXPECT_EQ(byDistance->compareObject(far, far), 0);
}

TEST(SortDescriptor, DescendingIsTheOtherWayRound) {
  const auto descending = SortDescriptor::initWithKey("k", false);
  EXPECT_EQ(descending->compareObject(qx::dict({{"k", 1}}), qx::dict({{"k", 2}})), 1);
  const auto reversed = descending->reversedSortDescriptor();
  EXPECT_TRUE(reversed->ascending());
  EXPECT_EQ(reversed->key()->utf8(), "k");
  EXPECT_EQ(reversed->compareObject(qx::dict({{"k", 1}}), qx::dict({{"k", 2}})), -1);
}

TEST(SortDescriptor, MissingValuesAreBeforeAllOthers) {
  const auto some = qx::dict({{"k", 1}});
  const auto none = qx::dict();
  EXPECT_EQ(SortDescriptor::sortDescriptorWithKey("k", true)->compareObject(none, some), -1);
  EXPECT_EQ(SortDescriptor::sortDescriptorWithKey("k", true)->compareObject(some, none), 1);
  EXPECT_EQ(SortDescriptor::sortDescriptorWithKey("k", true)->compareObject(none, none), 0);
  EXPECT_EQ(SortDescriptor::sortDescriptorWithKey("k", false)->compareObject(none, some), 1);
}

TEST(SortDescriptor, AnotherOperationCompares) {
  const auto d = SortDescriptor::sortDescriptorWithKey("k", true, "caseInsensitiveCompare:");
  EXPECT_EQ(d->compareObject(qx::dict({{"k", "A"}}), qx::dict({{"k", "a"}})), 0);
  EXPECT_EQ(d->selector(), qx::Selector("caseInsensitiveCompare:"));
}

TEST(SortDescriptor, WithoutAKeyTheObjectsThemselvesAreCompared) {
  EXPECT_EQ(SortDescriptor::sortDescriptorWithKey(nullptr, true)->compareObject(1, 2), -1);
}

TEST(SortDescriptor, WhatDoesNotCompareRaises) {
  const auto d = SortDescriptor::sortDescriptorWithKey(nullptr, true);
  EXPECT_THROW(d->compareObject(1, "a"), qx::InvalidArgumentException);
  EXPECT_THROW(d->compareObject(qx::null, 1), qx::InvalidArgumentException);
  EXPECT_THROW(SortDescriptor::initWithKey(nullptr, true, qx::Selector())->compareObject(1, 2),
               qx::InvalidArgumentException);
}

TEST(SortDescriptor, AnswersBySelector) {
  const qx::PropertyValue d = SortDescriptor::sortDescriptorWithKey("k", true);
  EXPECT_EQ(d.cls()->name(), std::string("NSSortDescriptor"));
  EXPECT_EQ(qx::classNamed("NSSortDescriptor"), d.cls());
  EXPECT_EQ(
      qx::performSelector(d, "compareObject:toObject:", qx::dict({{"k", 1}}), qx::dict({{"k", 2}})),
      -1);
  EXPECT_EQ(d["key"], "k");
  EXPECT_EQ(d["ascending"], true);
  EXPECT_EQ(d["selector"], "compare:");
}

}  // namespace
