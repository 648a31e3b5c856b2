#pragma once

// Property lists in a folder of the test.

#include <QXFoundation/property_list.h>

#include "tests/support/temporary_folder.h"

// The files that stores keep.
class StoreFiles {
 public:
  std::string operator/(std::string_view name) const { return folder_ / name; }
  std::vector<std::string> names() const { return folder_.names(); }
  std::string path() const { return folder_.path(); }

  void write(std::string_view name, const qx::PropertyValue& value,
             qx::PropertyListFormat format = qx::PropertyListFormat::xml) const {
    const auto bytes = qx::PropertyListSerialization::dataWithPropertyList(value, format);
    test_support::writeBytes(folder_ / name, bytes->view());
  }
  void writeBytes(std::string_view name, std::string_view bytes) const {
    test_support::writeBytes(folder_ / name, bytes);
  }
  // Nil for what is no property list.
  qx::PropertyValue read(std::string_view name) const {
    return qx::PropertyListSerialization::propertyListWithData(
        qx::Data::from(readBytes(name)), qx::PropertyListMutability::immutable, nullptr);
  }
  std::string readBytes(std::string_view name) const {
    return test_support::readBytes(folder_ / name);
  }
  void remove(std::string_view name) const { std::filesystem::remove(folder_ / name); }

 private:
  test_support::TemporaryFolder folder_;
};
