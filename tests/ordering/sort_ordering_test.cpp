#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>

namespace {

using qx::QXSortOrdering;

TEST(SortOrdering, KeepsKeyAndSelector) {
  for (const auto& ordering : {QXSortOrdering::sortOrderingWithKey("age", "compareDescending:"),
                               QXSortOrdering::initWithKey("age", "compareDescending:")}) {
    EXPECT_EQ(ordering->key()->utf8(), "age");
    EXPECT_EQ(ordering->selector(), qx::Selector("compareDescending:"));
    EXPECT_EQ(ordering->cls().name(), std::string("QXSortOrdering"));
    EXPECT_EQ(ordering->cls().superclass(), &qx::classOf<qx::Object>());
  }
}

TEST(SortOrdering, AMutableKeyIsCopied) {
  const auto key = qx::MutableString::from("a");
  const auto ordering = QXSortOrdering::initWithKey(key, "compareAscending:");
  key->appendString("b");
  EXPECT_EQ(ordering->key()->utf8(), "a");
}

TEST(SortOrdering, AnswersBySelector) {
  const qx::PropertyValue ordering = qx::performSelector(
      qx::classOf<QXSortOrdering>(), "sortOrderingWithKey:selector:", "age", "compareAscending:");
  ASSERT_TRUE(ordering.as<QXSortOrdering>() != nullptr);
  EXPECT_EQ(qx::performSelector(ordering, "key"), "age");
  EXPECT_EQ(qx::performSelector(ordering, "selector"), "compareAscending:");
  EXPECT_EQ(ordering.valueForKey("selector"), "compareAscending:");
}

TEST(SortOrdering, IsFoundByName) {
  EXPECT_EQ(qx::classNamed("QXSortOrdering"), &qx::classOf<QXSortOrdering>());
}

void expectArchives(const qx::Ref<QXSortOrdering>& ordering) {
  const auto bytes = qx::Archiver::archivedDataWithRootObject(ordering);
  const auto again = qx::Unarchiver::unarchiveObjectWithData(bytes).as<QXSortOrdering>();
  ASSERT_TRUE(again != nullptr);
  EXPECT_EQ(qx::PropertyValue(again->key()), qx::PropertyValue(ordering->key()));
  EXPECT_EQ(again->selector(), ordering->selector());
}

TEST(SortOrdering, SurvivesArchiving) {
  expectArchives(QXSortOrdering::initWithKey("näme", "compareCaseInsensitiveDescending:"));
  expectArchives(QXSortOrdering::initWithKey("a", qx::Selector::named("other")));
  expectArchives(QXSortOrdering::initWithKey(nullptr, qx::Selector()));
}

TEST(SortOrdering, EncodesTheKeyThenTheSelectorsName) {
  qx::Archiver archiver;
  QXSortOrdering::initWithKey("age", "compareDescending:")->encodeWithCoder(archiver);
  EXPECT_EQ(archiver.objectCount(), 2U);
  const auto bytes = archiver.archiverData();
  qx::Unarchiver values(bytes);
  EXPECT_EQ(values.decodeObject(), "age");
  EXPECT_EQ(values.decodeObject(), "compareDescending:");
  EXPECT_TRUE(values.isAtEnd());
  qx::Unarchiver coder(bytes);
  const auto again = QXSortOrdering::initWithCoder(coder);
  EXPECT_EQ(again->key()->utf8(), "age");
  EXPECT_EQ(again->selector(), qx::Selector("compareDescending:"));
}

TEST(SortOrdering, DecodingWhatIsNoTextRaises) {
  qx::Archiver archiver;
  archiver.encodeObject(1);
  archiver.encodeObject("compareAscending:");
  qx::Unarchiver coder(archiver.archiverData());
  EXPECT_THROW(QXSortOrdering::initWithCoder(coder), qx::InvalidArgumentException);
}

}  // namespace
