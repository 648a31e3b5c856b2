// Tells what differs between two property lists, whatever format each has: XML or binary.
//
//     example_property_list                two versions of the settings in data/
//     example_property_list OLD NEW
//
// Each line is a key path with "-" for what is gone, "+" for what is new, and both for what
// changed.

#include <fstream>
#include <iostream>
#include <string>

#include <QXFoundation/class.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/property_list.h>

namespace {

// What a file holds; nil, and a message, where that is no property list.
qx::PropertyValue contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::string bytes;
  for (char c = 0; file.get(c);) bytes.push_back(c);  // a folder can be opened, and not be read
  if (!file.eof() || file.bad()) {
    std::cerr << path << ": this file can not be read\n";
    return {};
  }
  qx::Ref<qx::Error> error;
  qx::PropertyListFormat format{};
  auto value = qx::PropertyListSerialization::propertyListWithData(
      qx::Data::from(bytes), qx::PropertyListMutability::immutable, &format, &error);
  if (value == nullptr) {
    std::cerr << path << ": " << error->localizedDescription() << '\n';
  } else {
    std::cout << (format == qx::PropertyListFormat::xml ? "XML" : "binary") << ", " << bytes.size()
              << " bytes\n";
  }
  return value;
}

class Comparison {
 public:
  // Values may be nested as deep as property lists are, which is bounded.
  void compare(const qx::PropertyValue& before, const qx::PropertyValue& after,
               const std::string& path) {
    if (before.isDictionary() && after.isDictionary()) {
      compareEntries(*before.as<qx::Dictionary>(), *after.as<qx::Dictionary>(), path);
    } else if (before.isArray() && after.isArray()) {
      compareElements(*before.as<qx::Array>(), *after.as<qx::Array>(), path);
    } else if (before != after) {
      report('-', path, before);
      report('+', path, after);
      ++count_;
    }
  }
  int count() const { return count_; }

 private:
  void compareEntries(const qx::Dictionary& before, const qx::Dictionary& after,
                      const std::string& path) {
    const std::string prefix = path.empty() ? path : path + '.';
    for (const auto [key, value] : before) {
      compare(value, after.objectForKey(key), prefix + key.utf8());
    }
    for (const auto [key, value] : after) {
      if (before.find(key) == nullptr) compare({}, value, prefix + key.utf8());
    }
  }
  void compareElements(const qx::Array& before, const qx::Array& after, const std::string& path) {
    const auto at = [](const qx::Array& list, std::size_t i) {
      return i < list.count() ? list.objectAtIndex(i) : qx::PropertyValue();
    };
    for (std::size_t i = 0; i < before.count() || i < after.count(); ++i) {
      compare(at(before, i), at(after, i), path + '[' + std::to_string(i) + ']');
    }
  }
  // Nil is what is not there, and so is not told.
  static void report(char mark, const std::string& path, const qx::PropertyValue& value) {
    if (value == nullptr) return;
    std::cout << mark << ' ' << path << ": " << value.description() << " (" << value.cls()->name()
              << ")\n";
  }

  int count_ = 0;
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 1 && argc != 3) {
    std::cerr << "usage: example_property_list [OLD NEW]\n";
    return 2;
  }
  const auto before = contents(argc == 3 ? argv[1] : EXAMPLES_DIR "/data/settings-old.plist");
  const auto after = contents(argc == 3 ? argv[2] : EXAMPLES_DIR "/data/settings-new.plist");
  if (before == nullptr || after == nullptr) return 1;

  Comparison comparison;
  comparison.compare(before, after, "");
  std::cout << comparison.count() << " differences\n";
}
