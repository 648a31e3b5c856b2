#pragma once

// What tests of extended attributes ask for.

#include <gtest/gtest.h>

#include <string>

#include <QXFoundation/extended_attributes.h>

namespace test_support {

inline qx::Ref<qx::URL> urlOf(const std::string& path) { return qx::URL::fileURLWithPath(path); }

inline std::string bytesOf(const qx::Ref<qx::Data>& data) {
  return data == nullptr ? "nil" : std::string(data->view());
}

// An error of the system as its code, description and attribute's name.
inline void expectError(const qx::Ref<qx::Error>& error, int code, const std::string& description,
                        const std::string& name) {
  ASSERT_TRUE(error != nullptr);
  EXPECT_EQ(error->domain()->utf8(), qx::NSPOSIXErrorDomain);
  EXPECT_EQ(error->code(), code);
  EXPECT_EQ(error->localizedDescription(), description);
  EXPECT_TRUE(error->userInfo()->objectForKey(qx::QXExtendedAttributeNameKey) == name);
  EXPECT_TRUE(error->userInfo()->objectForKey(qx::NSURLErrorKey).as<qx::URL>() != nullptr);
  EXPECT_EQ(error->userInfo()->count(), 3U);
}

}  // namespace test_support
