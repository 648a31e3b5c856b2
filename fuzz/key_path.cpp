// Random trees, and random paths written, removed and read in them: the library and a plain
// step-by-step rendering agree on every value, on the whole tree, and on what fails.

#include <cstdint>
#include <cstdlib>
#include <string>

#include <QXFoundation/QXFoundation.h>

#include "frame/key_text.h"
#include "preferences/tree_path.h"
#include "tests/support/key_path_reference.h"

namespace {

// Decisions from the input; zeros when it is used up.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), end_(data + size) {}
  bool isEmpty() const { return data_ == end_; }
  unsigned pick(unsigned count) { return isEmpty() ? 0 : *data_++ % count; }

  std::u16string path() {
    static constexpr char16_t kUnits[] = u"ab.[]0123.[0]aé漢-z";
    std::u16string result;
    for (unsigned n = pick(24); n > 0; --n) result += kUnits[pick(std::size(kUnits) - 1)];
    return result;
  }

  qx::PropertyValue value(unsigned levels) {
    switch (pick(levels == 0 ? 3 : 6)) {
      case 0:
        return static_cast<int>(pick(200));
      case 1:
        return "text";
      case 2:
        return true;
      case 3:
      case 4: {
        const auto d = qx::MutableDictionary::init();
        for (unsigned n = pick(4); n > 0; --n) d->setObject(value(levels - 1), key());
        return d;
      }
      default: {
        const auto a = qx::MutableArray::init();
        for (unsigned n = pick(13); n > 0; --n) a->addObject(value(levels - 1));
        return a;
      }
    }
  }

 private:
  std::string key() { return std::string(1, static_cast<char>("ab0"[pick(3)])); }

  const std::uint8_t* data_;
  const std::uint8_t* end_;
};

void require(bool condition) {
  if (!condition) std::abort();
}

// Equal in value and in the kinds of numbers.
bool isSameText(const qx::PropertyValue& a, const qx::PropertyValue& b) {
  return a == b && a.description() == b.description();
}

template <class F, class G>
bool bothFail(F library, G reference) {
  bool failed = false;
  bool referenceFailed = false;
  try {
    library();
  } catch (const qx::Exception&) {
    failed = true;
  }
  try {
    reference();
  } catch (const test_support::ReferenceFailure&) {
    referenceFailed = true;
  }
  require(failed == referenceFailed);
  return failed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const qx::PropertyValue contents = qx::dict({{"a", input.value(4)}, {"b", input.value(3)}});
  const auto store = qx::QXPreferences::initWithPath("/never/written.plist");
  store->setUserValues(
      qx::QXPreferencesDictionary::initWithDictionary(contents.as<qx::Dictionary>(), store));
  test_support::ReferenceTree reference(contents);
  while (!input.isEmpty()) {
    const unsigned operation = input.pick(4);
    const std::u16string path = input.path();
    const auto text = qx::String::fromUtf16(path);
    require(qx::detail::standardizedKeyPath(text)->utf16() ==
            test_support::referenceStandardized(path));
    qx::PropertyValue value = operation == 1 ? input.value(2) : qx::PropertyValue();
    qx::PropertyValue found;
    qx::PropertyValue expected;
    const bool failed = bothFail(
        [&] {
          if (operation < 2) {
            store->setObject(value, text);
          } else {
            found = store->objectForKeyPath(text);
          }
        },
        [&] {
          if (operation < 2) {
            reference.set(path, value.isNil() ? nullptr : test_support::referenceOf(value));
          } else {
            expected = test_support::valueOf(reference.get(path));
          }
        });
    if (failed) continue;
    require(isSameText(found, expected));
    require(isSameText(store->userValues(), test_support::valueOf(reference.root)));
  }
  return 0;
}
