// JsonBuilder: makes values of the events of a JSON parser, without a tree between.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/property_value.h>

#include "tools/qx/records.h"

namespace qxtool {

// Nesting beyond this is refused; what writes values may therefore nest its calls.
inline constexpr std::size_t kMaxJsonDepth = 1000;

// Dictionary keys as strings that are made once: records mostly have the keys of the record before,
// in its order.
class KeyTable {
 public:
  // Valid as long as the table.
  const qx::String& keyFor(std::string_view text);

 private:
  struct Key {
    qx::Ref<qx::String> string;
    // The one that came after it last time.
    std::pair<const std::string, Key>* next = nullptr;
  };
  using Table = std::map<std::string, Key, std::less<>>;
  Table keys_;
  Table::value_type* last_ = nullptr;
};

// What is well-formed and still not taken, at the place that was read last.
class JsonFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// What becomes of text that no value stands for as it is.
enum class JsonRules : unsigned char {
  // Integers that 64 bits do not hold become decimal numbers where those hold them exactly (38
  // digits), else doubles. Of a key given twice the last value stays.
  lenient,
  // Both are refused: for what is to be kept.
  strict,
};

// The functions are called by the parser, in the order of the text; they raise JsonFault. "-0" is
// the integer 0.
class JsonBuilder {
 public:
  // With a sink, the text is an array of dictionaries, which are handed to it one by one.
  JsonBuilder(RecordSink* sink, JsonRules rules) : sink_(sink), rules_(rules) {}

  bool null() { return add(qx::null); }
  bool boolean(bool value) { return add(value); }
  bool integer(std::int64_t value) { return add(value); }
  bool unsignedInteger(std::uint64_t value);
  bool real(double value, const std::string& text);
  bool string(const std::string& text) { return add(text); }
  bool startDictionary();
  bool key(const std::string& text);
  bool endDictionary();
  bool startArray();
  bool endArray();

  // The whole value; nil where a sink has taken the records.
  const qx::PropertyValue& root() const { return root_; }

 private:
  // A container that is not complete: where its entries, or its elements, begin on their stack.
  struct Frame {
    bool isDictionary;
    std::size_t begin;
  };

  bool open(bool isDictionary);
  bool add(qx::PropertyValue value);
  void addRecord(qx::PropertyValue value);
  void requireDistinctKeys(std::size_t begin) const;

  RecordSink* const sink_;
  const JsonRules rules_;
  std::size_t records_ = 0;
  KeyTable keys_;
  std::vector<Frame> frames_;
  std::vector<qx::Entry> entries_;
  std::vector<qx::PropertyValue> elements_;
  qx::PropertyValue root_;
};

}  // namespace qxtool
