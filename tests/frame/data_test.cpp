#include <gtest/gtest.h>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/data.h>

namespace qx {
namespace {

TEST(Datas, HoldBytes) {
  const std::string bytes("a\0\xFF", 3);
  const auto d = Data::from(bytes);
  EXPECT_EQ(d->length(), 3U);
  EXPECT_EQ(d->view(), bytes);
  EXPECT_EQ(d->bytes()[2], 0xFF);
  EXPECT_EQ(Data::from("")->length(), 0U);
  EXPECT_EQ(Data::from({})->view(), "");
  EXPECT_EQ(Data::from(std::string(100000, 'x'))->view(), std::string(100000, 'x'));
}

TEST(Datas, DescribeThemselvesInHexadecimal) {
  const struct {
    std::string bytes;
    const char* text;
  } cases[] = {{"", "<>"},
               {std::string("\x0A", 1), "<0a>"},
               {"abcd", "<61626364>"},
               {"abcde", "<61626364 65>"},
               {std::string("\x00\xFF", 2), "<00ff>"}};
  for (const auto& c : cases) EXPECT_EQ(Data::from(c.bytes)->description(), c.text);
  const std::string large = Data::from(std::string(5000, 'x'))->description();
  EXPECT_EQ(large.size(), 2 + 1024 * 2 + 1024 / 4 - 1 + 3);
  EXPECT_EQ(large.substr(large.size() - 6), "78...>");
  EXPECT_EQ(Data::from(std::string(1024, 'x'))->description().back(), '>');
  EXPECT_EQ(Data::from(std::string(1024, 'x'))->description().find('.'), std::string::npos);
}

TEST(MutableDatas, ChangeInPlace) {
  const auto d = MutableData::init();
  d->appendBytes("ab");
  d->appendBytes("");
  d->appendBytes(d->view());
  EXPECT_EQ(d->view(), "abab");
  EXPECT_EQ(d->length(), 4U);
  d->setData(d->view().substr(1, 2));
  EXPECT_EQ(d->view(), "ba");
  for (int i = 0; i < 10; ++i) d->appendBytes(d->view());
  EXPECT_EQ(d->length(), 2048U);
  d->setData({});
  EXPECT_EQ(d->length(), 0U);
}

TEST(MutableDatas, EqualAndHashByContent) {
  const auto d = MutableData::from("abc");
  EXPECT_TRUE(PropertyValue(d) == PropertyValue(Data::from("abc")));
  EXPECT_TRUE(PropertyValue(Data::from("abc")) == PropertyValue(d));
  EXPECT_EQ(d->hash(), Data::from("abc")->hash());
  EXPECT_FALSE(PropertyValue(d) == PropertyValue("abc"));
  const PropertyValue fixed = PropertyValue(d).copy();
  const PropertyValue changing = fixed.mutableCopy();
  d->appendBytes("d");
  EXPECT_EQ(fixed.as<Data>()->view(), "abc");
  EXPECT_EQ(changing.as<MutableData>()->view(), "abc");
  EXPECT_STREQ(fixed.cls()->name(), "NSData");
  EXPECT_TRUE(isSame(fixed.copy(), fixed));
  EXPECT_NE(d->hash(), fixed.hash());
}

}  // namespace
}  // namespace qx
