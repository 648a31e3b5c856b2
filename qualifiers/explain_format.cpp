// Remarks on a format: the parser's own scan, with a second listener.

#include <algorithm>
#include <string>
#include <vector>

#include <QXFoundation/qualifier_explanation.h>

#include "frame/utf.h"
#include "qualifiers/format_parser.h"
#include "qualifiers/operator_table.h"
#include "qualifiers/tree_printer.h"

namespace qx::detail {
namespace {

using Kind = FormatRemark::Kind;
constexpr std::size_t kMaxRemarks = 1000;
constexpr std::size_t kMaxQuotation = 60;

// The piece of the format, in quotes and cut; ill-formed bytes read as U+FFFD.
std::string quotation(std::string_view piece) {
  const bool cut = piece.size() > kMaxQuotation;
  std::string text;
  if (isValidUtf8(piece)) {
    text = std::string(piece);
  } else {
    text = String::from(piece.substr(0, cut ? kMaxQuotation + 4 : piece.size()))->utf8();
  }
  return '"' + shortened(std::move(text), kMaxQuotation) + '"';
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [&](char x, char y) { return lower(x) == lower(y); });
}

// What to write instead of text that is no operator.
std::string operatorAdvice(std::string_view text) {
  for (const OperatorText& o : kOperators) {
    if (equalIgnoringCase(text, o.text)) return "this one is written " + std::string(o.text);
  }
  if (text.starts_with('.')) return "a key path is given as an argument, for %s";
  if (text.starts_with('\'') || text.starts_with('"')) return "a key is not quoted";
  return "operators stand between blanks";
}

// Builds the tree as the parser does, and remarks on what it sees. Positions become columns at the
// end.
class RemarkingBuilder : public TreeBuilder {
 public:
  using TreeBuilder::TreeBuilder;

  std::vector<FormatRemark> takeRemarks();

  void beginKey(std::size_t position) {
    TreeBuilder::beginKey(position);
    comparisonStart_ = tokenStart_ = position;
    inValue_ = false;
  }
  void endKey() {
    TreeBuilder::endKey();
    if (gathered().empty())
      note(Kind::emptyKey, tokenStart_, "there is no key here: no property is named \"\"");
  }
  void operatorText(std::string_view text, std::size_t position);
  void beginValue(std::size_t position) {
    TreeBuilder::beginValue(position);
    tokenStart_ = position;
    inValue_ = true;
    isBareWord_ = true;
    isQuoted_ = isCast_ = false;
  }
  void castTo(std::string_view className, std::size_t position);
  void nilValue() {
    TreeBuilder::nilValue();
    isBareWord_ = false;
  }
  void quoted(std::size_t closing);
  bool argument(char letter, bool whole, std::size_t position) {
    isBareWord_ = false;
    if (whole && position > tokenStart_) {
      note(Kind::textDropped, tokenStart_,
           quotation(format().substr(tokenStart_, position - tokenStart_)) +
               " is dropped: the argument alone is the value");
    }
    return TreeBuilder::argument(letter, whole, position);
  }
  void endComparison(bool constant);
  void connective(format::Connective word, std::size_t position, bool endsText);
  void finish(std::size_t position);

 private:
  void note(Kind kind, std::size_t position, std::string text);
  void noteBareWord(bool constant);

  std::vector<FormatRemark> remarks_;  // in order, with byte positions as columns
  std::size_t comparisonStart_ = 0;
  std::size_t tokenStart_ = 0;
  bool inValue_ = false;
  bool isBareWord_ = false;
  bool isQuoted_ = false;
  bool isCast_ = false;
  bool constantBefore_ = false;
};

void RemarkingBuilder::note(Kind kind, std::size_t position, std::string text) {
  if (remarks_.size() < kMaxRemarks) {
    const auto isBefore = [](std::size_t at, const FormatRemark& r) { return at < r.column; };
    const auto place = std::upper_bound(remarks_.begin(), remarks_.end(), position, isBefore);
    remarks_.insert(place, {kind, position, std::move(text)});
  } else if (remarks_.size() == kMaxRemarks) {
    remarks_.push_back({Kind::more, format().size(), "there are more remarks than are kept"});
  }
}

std::vector<FormatRemark> RemarkingBuilder::takeRemarks() {
  std::size_t position = 0;
  std::size_t column = 1;
  for (FormatRemark& remark : remarks_) {
    column += columnAt(format().substr(position), remark.column - position) - 1;
    position = remark.column;
    remark.column = column;
  }
  return std::move(remarks_);
}

void RemarkingBuilder::operatorText(std::string_view text, std::size_t position) {
  TreeBuilder::operatorText(text, position);
  if (!QXQualifier::operatorSelectorForString(text).isNull()) return;
  const std::string what =
      text.empty() ? "there is no operator here" : quotation(text) + " is no operator";
  note(Kind::unknownOperator, position,
       what + ": the comparison is false for every object; " + operatorAdvice(text));
}

void RemarkingBuilder::castTo(std::string_view className, std::size_t position) {
  TreeBuilder::castTo(className, position);
  isCast_ = true;
  if (position + className.size() == format().size()) {
    note(Kind::unbalanced, position - 1,
         "the cast has no closing parenthesis: it ends with the text");
  }
  if (castClass() == nullptr) {
    note(Kind::unknownClass, position,
         quotation(className) + " is the name of no class: the value is nil");
  }
}

void RemarkingBuilder::quoted(std::size_t closing) {
  isQuoted_ = inValue_;
  isBareWord_ = false;
  if (closing == format().size()) {
    note(Kind::unbalanced, tokenStart_, "the quoted text is not closed: it ends with the text");
  }
}

void RemarkingBuilder::noteBareWord(bool constant) {
  const std::string& word = gathered();
  if (constant) {
    if (isCast_ || !constantBefore_) return;  // made by the cast, or by "%%"
    note(Kind::bareWordIsConstant, tokenStart_,
         quotation(word) + " is taken as text, because a constant stands before it");
  } else if (word.empty()) {
    note(Kind::emptyKey, tokenStart_, "there is no value here: it is taken as the key \"\"");
  } else {
    note(Kind::bareWordIsKey, tokenStart_,
         quotation(word) + " is taken as a key; constants are given as arguments or in quotes");
  }
}

void RemarkingBuilder::endComparison(bool constant) {
  TreeBuilder::endComparison(constant);
  if (isCast_ && castClass() != nullptr && form() == Form::text && right().isNil()) {
    note(Kind::classWithoutText, tokenStart_,
         "the class makes nothing of the text: the value is nil");
  }
  if (form() == Form::nil) {
    note(Kind::nilValue, tokenStart_,
         "nothing equals nil, not even what is missing; to test for absence compare with %@ and "
         "null");
  }
  if (isBareWord_) noteBareWord(constant);
  constantBefore_ = constant;
}

void RemarkingBuilder::connective(format::Connective word, std::size_t position, bool endsText) {
  const bool changed = combinator() != format::Connective::none && combinator() != word;
  TreeBuilder::connective(word, position, endsText);
  if (changed && !endsText) {
    note(Kind::comparisonDropped, comparisonStart_,
         "this comparison is dropped, because the word after it differs from the one before it; "
         "build mixed "
         "conditions in code");
  }
  if (!changed && endsText) {
    note(Kind::comparisonRepeated, position, "nothing follows: the last comparison counts twice");
  }
}

void RemarkingBuilder::finish(std::size_t position) {
  const std::string_view rest =
      format().substr(std::min(position + (isQuoted_ ? 1 : 0), format().size()));
  const auto isSpace = [](char c) { return format::isSpace(c); };
  if (!std::all_of(rest.begin(), rest.end(), isSpace)) {
    const std::size_t at = format().size() - rest.size();
    if (isQuoted_) {
      note(Kind::quotedTextEndsFormat, at,
           "quoted text ends the format: " + quotation(rest) + " is ignored");
    } else {
      note(Kind::textIgnored, at, quotation(rest) + " is ignored: neither and nor or stands here");
    }
  }
  if (unusedArguments() != 0) {
    note(Kind::argumentsUnused, format().size(),
         std::to_string(unusedArguments()) + " of the arguments are not used");
  }
}

}  // namespace

FormatExplanation explainFormat(StringArg format, const PropertyValue* arguments,
                                std::size_t count) {
  const FormatText text(format);
  if (text.isEmpty()) return {};
  RemarkingBuilder builder(text.view(), arguments, count);
  format::Scanner(text.view(), builder).run();
  Ref<QXQualifier> qualifier = builder.take();
  return {std::move(qualifier), builder.takeRemarks()};
}

}  // namespace qx::detail
