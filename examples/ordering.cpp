// Sorts the accounts of a passwd file by any of their fields, each ascending or descending, and
// puts one more at its place.
//
//     example_ordering                         /etc/passwd by user number
//     example_ordering FILE -shell name        FILE by shell, descending, then by name
//
// Fields: name, uid, gid, about, home, shell. A file with a line that is no account is refused.

#include <algorithm>
#include <array>
#include <charconv>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/data_cursor.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/file_manager.h>
#include <QXFoundation/key_order_sorting.h>
#include <QXFoundation/sorted_insertion.h>

namespace {

constexpr std::array<std::string_view, 6> kFields{"name", "uid", "gid", "about", "home", "shell"};

std::optional<std::int64_t> number(std::string_view text) {
  std::int64_t n = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), n);
  if (fault != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return n;
}

// The account of one line; nil where the line is none.
qx::Ref<qx::Dictionary> account(const qx::Ref<qx::String>& line) {
  const auto parts = line->componentsSeparatedByString(":");
  if (parts->count() != 7) return nullptr;
  const auto part = [&](std::size_t i) { return parts->objectAtIndex(i); };
  const auto uid = number(part(2).description());
  const auto gid = number(part(3).description());
  if (!uid || !gid) return nullptr;
  return qx::dict({{"name", part(0)},
                   {"uid", *uid},
                   {"gid", *gid},
                   {"about", part(4)},
                   {"home", part(5)},
                   {"shell", part(6)}});
}

// The accounts of the file; nil, and a message, where it can not be read as such.
qx::Ref<qx::MutableArray> accounts(const std::string& path) {
  bool isFolder = false;
  if (!qx::FileManager::defaultManager()->fileExistsAtPath(path, &isFolder) || isFolder) {
    std::cerr << path << ": no such file\n";
    return nullptr;
  }
  auto result = qx::MutableArray::init();
  const auto cursor = qx::QXDataCursor::initWithFile(path);
  for (int lineNumber = 1; const auto line = cursor->readLine(); ++lineNumber) {
    if (line->length() == 0 || line->hasPrefix("#")) continue;
    const auto one = account(line);
    if (one == nullptr) {
      std::cerr << path << ':' << lineNumber << ": this is no account\n";
      return nullptr;
    }
    result->addObject(one);
  }
  return result;
}

// "name" or "-name" for each; nil, and a message, for a field that accounts do not have.
qx::Ref<qx::MutableArray> orderings(const std::vector<std::string_view>& wanted) {
  auto result = qx::MutableArray::init();
  for (std::string_view field : wanted) {
    const bool isDescending = field.starts_with('-');
    if (isDescending) field.remove_prefix(1);
    if (std::find(kFields.begin(), kFields.end(), field) == kFields.end()) {
      std::cerr << field << ": accounts have no such field\n";
      return nullptr;
    }
    result->addObject(isDescending
                          ? qx::QXSortOrdering::sortOrderingWithKey(field, "compareDescending:")
                          : qx::QXSortOrdering::sortOrderingWithKey(field, "compareAscending:"));
  }
  return result;
}

void show(const char* heading, const qx::Ref<qx::MutableArray>& list) {
  std::cout << heading << '\n' << std::left;
  for (const qx::PropertyValue& one : *list) {
    std::cout << "  " << std::setw(24) << one["name"].description() << std::setw(8)
              << one["uid"].description() << one["shell"].description() << '\n';
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> arguments(argv + 1, argv + argc);
  const std::string path(arguments.empty() ? "/etc/passwd" : arguments.front());
  std::vector<std::string_view> fields{"uid"};
  if (arguments.size() > 1) fields.assign(arguments.begin() + 1, arguments.end());

  const auto order = orderings(fields);
  if (order == nullptr) return 2;
  const auto list = accounts(path);
  if (list == nullptr) return 1;

  // Accounts that the first ordering finds the same are sorted by the second, and so on.
  sortStablyUsingOrderings(list, order);
  show("sorted:", list);

  // A list that is sorted already takes one more by binary search.
  const auto guest = qx::dict({{"name", "guest"},
                               {"uid", 1500},
                               {"gid", 1500},
                               {"about", "Guest"},
                               {"home", "/tmp"},
                               {"shell", "/bin/false"}});
  insertObjectInSortedArray(list, guest, order->firstObject().as<qx::QXSortOrdering>());
  std::cout << "a guest would stand at place " << list->indexOfObject(guest) + 1 << " of "
            << list->count() << '\n';
}
