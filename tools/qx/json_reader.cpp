#include "tools/qx/json_reader.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string>

#include "tools/qx/failure.h"
#include "tools/qx/input.h"
#include "tools/qx/json_builder.h"

namespace qxtool {
namespace {

using Json = nlohmann::json;

constexpr std::size_t kMaxQuotation = 40;

// What the parser says, without its marks, and of the text it quotes the end alone: it may be the
// whole file.
std::string reasonOf(std::string_view message, std::string_view lastToken) {
  if (message.substr(0, 1) == "[")
    message.remove_prefix(std::min(message.find("] ") + 2, message.size()));
  const std::size_t quotation = message.find("; last read: '");
  if (quotation == std::string_view::npos) return std::string(message);
  const bool cut = lastToken.size() > kMaxQuotation;
  if (cut) lastToken.remove_prefix(lastToken.size() - kMaxQuotation);
  while (cut && !lastToken.empty() &&
         (static_cast<unsigned char>(lastToken.front()) & 0xC0) == 0x80) {
    lastToken.remove_prefix(1);
  }
  return std::string(message.substr(0, quotation)) + "; last read: '" + (cut ? "..." : "") +
         std::string(lastToken) + "'";
}

std::string atByte(std::uint64_t offset) { return " (byte " + std::to_string(offset) + ")"; }

// The builder as the parser wants it. The names are the parser's.
class Events {
 public:
  Events(RecordSink* sink, JsonRules rules) : builder_(sink, rules) {}
  const qx::PropertyValue& root() const { return builder_.root(); }

  bool null() { return builder_.null(); }
  bool boolean(bool value) { return builder_.boolean(value); }
  bool number_integer(Json::number_integer_t value) { return builder_.integer(value); }
  bool number_unsigned(Json::number_unsigned_t value) { return builder_.unsignedInteger(value); }
  bool number_float(Json::number_float_t value, const std::string& text) {
    return builder_.real(value, text);
  }
  bool string(std::string& text) { return builder_.string(text); }
  bool binary(Json::binary_t&) { return false; }  // JSON has none
  bool start_object(std::size_t) { return builder_.startDictionary(); }
  bool key(std::string& text) { return builder_.key(text); }
  bool end_object() { return builder_.endDictionary(); }
  bool start_array(std::size_t) { return builder_.startArray(); }
  bool end_array() { return builder_.endArray(); }

  // The position counts the byte that is wrong, offsets count from 0.
  bool parse_error(std::size_t position, const std::string& lastToken,
                   const Json::exception& error) {
    fault_ = reasonOf(error.what(), lastToken) + atByte(position == 0 ? 0 : position - 1);
    return false;
  }
  // What the parser found wrong, when it gave up.
  const std::string& fault() const { return fault_; }

 private:
  JsonBuilder builder_;
  std::string fault_;
};

}  // namespace

qx::PropertyValue valueFromJson(std::string_view text, JsonRules rules) {
  Events events(nullptr, rules);
  if (!Json::sax_parse(text.begin(), text.end(), &events)) throw Failure(events.fault());
  return events.root();
}

void readJsonRecords(Input& input, RecordSink& sink) {
  Events events(&sink, JsonRules::lenient);
  try {
    if (!Json::sax_parse(Input::Iterator(input), Input::Iterator(), &events)) {
      throw Failure(input.name() + ": " + events.fault());
    }
  } catch (const JsonFault& fault) {
    throw Failure(input.name() + ": " + fault.what() + atByte(input.position() - 1));
  }
}

}  // namespace qxtool
