#include <QXFoundation/set.h>
#include <QXFoundation/string.h>

#include "frame/deep.h"
#include "frame/string_storage.h"
#include "frame/utf.h"

namespace qx::detail {
namespace {

constexpr unsigned kMaxDepth = 60;
constexpr std::size_t kMaxText = std::size_t{16} << 20;

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
        return describeAll(static_cast<const Array&>(o), "(", ")");
      case ObjectKind::set:
        return describeAll(*static_cast<const Set&>(o).allObjects(), "{(", ")}");
      case ObjectKind::dictionary:
        return describeDictionary(static_cast<const Dictionary&>(o));
      default:
        out_ += o.description();
    }
  }

 private:
  // False, with "..." written, when no more may be.
  bool enter() {
    if (depth_ < kMaxDepth && out_.size() < kMaxText) return true;
    out_ += "...";
    return false;
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
    if (!enter()) return;
    ++depth_;
    out_ += open;
    for (std::size_t i = 0; i < a.count() && (i == 0 || enter()); ++i) {
      if (i != 0) out_ += ", ";
      describe(a.begin()[i]);
    }
    out_ += close;
    --depth_;
  }

  void describeDictionary(const Dictionary& d) {
    if (!enter()) return;
    ++depth_;
    out_ += "{";
    bool first = true;
    for (const auto& [key, value] : d) {
      if (!first && !enter()) break;
      if (!first) out_ += ' ';
      first = false;
      describeString(key);
      out_ += " = ";
      describe(value);
      out_ += ';';
    }
    out_ += "}";
    --depth_;
  }

  std::string out_;
  unsigned depth_ = 0;
};

}  // namespace

std::string describeDeep(const PropertyValue& container) {
  Describer d;
  d.describe(container);
  return d.take();
}

std::string describeDeep(const Object& container) {
  Describer d;
  d.describe(container);
  return d.take();
}

}  // namespace qx::detail
