// Extended attributes of a system that does as the test tells.

#include "platform/attribute_calls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <QXFoundation/extended_attributes.h>
#include <QXFoundation/property_list.h>

#include "tests/files/attribute_checks.h"

namespace qx {
namespace {

using test_support::urlOf;

class FakeAttributes : public detail::AttributeCalls {
 public:
  std::string value;
  std::vector<std::size_t> growth;  // sizes after each question for the size
  int getError = 0, setError = 0, removeError = 0;
  bool hasRoom = false;
  int questions = 0;

  ssize_t lgetxattr(const char*, const char*, void* bytes, std::size_t size) override {
    if (getError != 0) return fail(getError);
    const auto length = static_cast<ssize_t>(value.size());
    if (size == 0) {
      ++questions;
      if (!growth.empty()) {
        value.resize(growth.front(), 'g');
        growth.erase(growth.begin());
      }
      return length;
    }
    if (value.size() > size) return fail(ERANGE);
    std::memcpy(bytes, value.data(), value.size());
    return length;
  }
  int lsetxattr(const char*, const char*, const void*, std::size_t) override {
    return setError != 0 ? fail(setError) : 0;
  }
  int lremovexattr(const char*, const char*) override {
    return removeError != 0 ? fail(removeError) : 0;
  }
  bool volumeHasRoom(const char*, std::size_t) override { return hasRoom; }

 private:
  static int fail(int error) {
    errno = error;
    return -1;
  }
  detail::ReplacedAttributeCalls replaced_{*this};
};

TEST(AttributeCalls, AValueThatGrowsIsReadAgain) {
  FakeAttributes calls;
  calls.value = std::string(5000, 'x');
  calls.growth = {6000, 7000, 7000};
  EXPECT_EQ(dataForExtendedAttribute(urlOf("/f"), "a")->length(), 7000U);
  EXPECT_EQ(calls.questions, 3);
}

// Values up to 4096 bytes are read at once, larger ones after a question for their size; both as
// bytes and as the property values that they hold.
TEST(AttributeCalls, ValuesOfAnySizeAreReadWhole) {
  FakeAttributes calls;
  for (const std::size_t size : {0U, 1U, 4095U, 4096U, 4097U, 8191U, 8192U, 8193U, 65536U}) {
    calls.questions = 0;
    calls.value = std::string(size, 'x');
    EXPECT_EQ(dataForExtendedAttribute(urlOf("/f"), "a")->view(), calls.value) << size;
    EXPECT_EQ(calls.questions, size > 4096 ? 1 : 0) << size;
    const PropertyValue list = array(std::string(size, 'y'), Data::from(calls.value));
    calls.value =
        PropertyListSerialization::dataWithPropertyList(list, PropertyListFormat::binary)->view();
    const PropertyValue read = valueOfExtendedAttributeWithName(urlOf("/f"), "a");
    std::fill(calls.value.begin(), calls.value.end(), 'z');
    EXPECT_TRUE(read == list) << size;
  }
}

TEST(AttributeCalls, AValueThatShrinksWhileItIsReadIsAsLongAsItWasRead) {
  FakeAttributes calls;
  calls.value = std::string(5000, 'x');
  calls.growth = {3};
  EXPECT_EQ(dataForExtendedAttribute(urlOf("/f"), "a")->view(), "xxx");
}

TEST(AttributeCalls, AVolumeWithRoomIsNotFull) {
  FakeAttributes calls;
  Ref<Error> error;
  calls.setError = ENOSPC;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/f"), Data::from("1"), "a", &error));
  EXPECT_EQ(error->code(), ENOSPC);
  EXPECT_EQ(error->localizedDescription(), ::strerror(ENOSPC));
  calls.hasRoom = true;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/f"), Data::from("1"), "a", &error));
  EXPECT_EQ(error->code(), E2BIG);
  calls.setError = EDQUOT;
  EXPECT_FALSE(setExtendedAttributeData(urlOf("/f"), Data::from("1"), "a", &error));
  EXPECT_EQ(error->code(), EDQUOT);
}

TEST(AttributeCalls, RemovingWhatIsAbsentSucceedsWhereItIsRefused) {
  FakeAttributes calls;
  Ref<Error> error;
  for (const int refusal : {EPERM, EACCES, EROFS}) {
    calls.removeError = refusal;
    calls.getError = ENODATA;
    EXPECT_TRUE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
    calls.getError = 0;
    EXPECT_FALSE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
    EXPECT_EQ(error->code(), refusal);
    calls.getError = EACCES;
    EXPECT_FALSE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
    EXPECT_EQ(error->code(), refusal);
  }
  calls.removeError = EIO;
  calls.getError = ENODATA;
  EXPECT_FALSE(removeExtendedAttributeWithName(urlOf("/f"), "a", &error));
  EXPECT_EQ(error->code(), EIO);
}

}  // namespace
}  // namespace qx
