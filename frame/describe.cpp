#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

#include "frame/array_storage.h"
#include "frame/deep.h"
#include "frame/dictionary_storage.h"
#include "frame/string_storage.h"
#include "frame/utf.h"

namespace qx::detail {
namespace {

constexpr unsigned kMaxDepth = 60;
constexpr std::size_t kMaxText = std::size_t{16} << 20;

// Of the containers that this thread is describing within each other.
__attribute__((tls_model("initial-exec"))) thread_local unsigned depth = 0;
struct Level {
  Level() { ++depth; }
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  ~Level() { --depth; }
};

bool isPlainWord(TextSpan text) {
  for (std::size_t i = 0; i < text.size; ++i) {
    const char16_t c = text[i];
    if (!(isAsciiDigit(c) || (asciiLower(c) >= 'a' && asciiLower(c) <= 'z') || c == '_' ||
          c == '-' || c == '.')) {
      return false;
    }
  }
  return text.size != 0;
}

class Describer {
 public:
  std::string take() { return std::move(out_); }

  void describe(const PropertyValue& v) {
    const Object* o = v.object();
    if (o == nullptr) {
      out_ += v.description();
    } else {
      describe(*o);
    }
  }

  void describe(const Object& o) {
    switch (ObjectAccess::kind(o)) {
      case ObjectKind::string:
        return describeString(static_cast<const String&>(o));
      case ObjectKind::array:
        return describeAll(*ArrayStorage::steady(static_cast<const Array&>(o)), "(", ")");
      case ObjectKind::set:
        return describeAll(*static_cast<const Set&>(o).allObjects(), "{(", ")}");
      case ObjectKind::dictionary:
        return describeDictionary(*DictionaryStorage::steady(static_cast<const Dictionary&>(o)));
      default:
        out_ += o.description();
    }
  }

 private:
  // Both write "..." where they hold.
  bool isTooDeep() { return cutIf(depth >= kMaxDepth); }
  bool isTooLong() { return cutIf(out_.size() >= kMaxText); }
  bool cutIf(bool limitReached) {
    if (limitReached) out_ += "...";
    return limitReached;
  }

  void describeString(const String& s) {
    const TextSpan text = StringStorage::span(s);
    if (isPlainWord(text)) return appendUtf8(out_, text);
    out_ += '"';
    for (const char c : toUtf8(text)) {
      if (c == '"' || c == '\\') out_ += '\\';
      out_ += c;
    }
    out_ += '"';
  }

  void describeAll(const Array& a, const char* open, const char* close) {
    if (isTooDeep()) return;
    const Level level;
    out_ += open;
    bool first = true;
    for (const PropertyValue& v : a) {
      if (!first) out_ += ", ";
      first = false;
      if (isTooLong()) break;
      describe(v);
    }
    out_ += close;
  }

  void describeDictionary(const Dictionary& d) {
    if (isTooDeep()) return;
    const Level level;
    out_ += "{";
    bool first = true;
    for (const auto& [key, value] : d) {
      if (!first) out_ += ' ';
      first = false;
      if (isTooLong()) break;
      describeString(key);
      out_ += " = ";
      describe(value);
      out_ += ';';
    }
    out_ += "}";
  }

  std::string out_;
};

}  // namespace

std::string describeDeep(const Object& container) {
  Describer d;
  d.describe(container);
  return d.take();
}

}  // namespace qx::detail
