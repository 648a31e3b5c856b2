// qx select: the records of a file that a qualifier accepts.

#include <unistd.h>

#include <CLI/App.hpp>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/array.h>
#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>

#include "tools/qx/arguments.h"
#include "tools/qx/command.h"
#include "tools/qx/failure.h"
#include "tools/qx/format.h"
#include "tools/qx/keys.h"
#include "tools/qx/number_of.h"
#include "tools/qx/output.h"
#include "tools/qx/progress.h"
#include "tools/qx/record_output.h"
#include "tools/qx/records.h"
#include "tools/qx/sorting.h"

namespace qxtool {
namespace {

struct SelectOptions {
  std::string file;
  std::optional<std::string> where;
  ArgumentOptions arguments;
  std::optional<std::string> keys;
  std::optional<std::string> limit;
  std::vector<std::string> sort;
  bool count = false;
  std::string output = "table";
};

// Keeps the records that the qualifier accepts. It is asked about some thousand at a time, so that
// those that it refuses are freed while they are still in the processor's cache.
class Selection : public RecordSink {
 public:
  // No qualifier accepts every record; of those accepted, the first `limit` are taken.
  Selection(std::optional<qx::Ref<qx::QXQualifier>> qualifier, std::uint64_t limit, bool onlyCount)
      : qualifier_(std::move(qualifier)), limit_(limit), onlyCount_(onlyCount) {
    batch_->reserve(kBatch);
  }

  void add(qx::PropertyValue record) override {
    batch_->addObject(record);
    if (batch_->count() == kBatch) decide();
  }
  // After the last record.
  void finish() { decide(); }

  std::uint64_t count() const { return count_; }
  qx::MutableArray& records() { return *records_; }

 private:
  static constexpr std::size_t kBatch = 4096;

  void decide() {
    if (count_ < limit_)
      take(qualifier_ ? *filteredArrayUsingQualifier(batch_, *qualifier_) : *batch_);
    batch_->removeAllObjects();
    batch_->reserve(kBatch);
  }
  void take(const qx::Array& accepted) {
    for (const qx::PropertyValue& record : accepted) {
      if (count_ == limit_) return;
      ++count_;
      if (!onlyCount_) records_->addObject(record);
    }
  }

  const std::optional<qx::Ref<qx::QXQualifier>> qualifier_;
  const std::uint64_t limit_;
  const bool onlyCount_;
  std::uint64_t count_ = 0;
  qx::Ref<qx::MutableArray> batch_ = qx::MutableArray::init();
  qx::Ref<qx::MutableArray> records_ = qx::MutableArray::init();
};

// The qualifier of --where; none without it. People are told of what they may not have meant,
// scripts are not.
std::optional<qx::Ref<qx::QXQualifier>> qualifierOf(const SelectOptions& options) {
  const auto given = options.arguments.given();
  if (!options.where) {
    if (!given.empty()) throw Failure("--arg and --arg-json need --where");
    return std::nullopt;
  }
  try {
    const ParsedFormat format = parsedFormat(*options.where, given);
    if (format.usedArguments < given.size()) {
      throw Failure("too many arguments: " + std::to_string(given.size()) +
                    " given, the format takes " + std::to_string(format.usedArguments));
    }
    if (format.explanation.qualifier == nullptr) throw Failure("the format is empty");
    if (::isatty(STDERR_FILENO) == 1) showRemarks(format.explanation.remarks);
    return format.explanation.qualifier;
  } catch (const Failure& failure) {
    throw Failure(std::string("--where: ") + failure.what());
  }
}

constexpr std::uint64_t kUnlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t limitOf(const SelectOptions& options) {
  if (!options.limit) return kUnlimited;
  const auto limit = numberOf<std::uint64_t>(*options.limit);
  if (!limit) throw Failure("--limit takes a number of records, not " + *options.limit);
  return *limit;
}

void cut(qx::MutableArray& records, std::uint64_t limit) {
  while (records.count() > limit) records.removeLastObject();
}

void runSelect(const SelectOptions& options) {
  const RecordForm* form = recordFormNamed(options.output);
  if (form == nullptr)
    throw Failure("--output takes table, json, plist or binary, not " + options.output);
  const Keys keys = options.keys ? keysFromList(*options.keys) : Keys();
  const qx::Ref<qx::Array> orderings = orderingsOf(options.sort);
  const std::uint64_t limit = limitOf(options);
  // What comes first is known only when all are sorted.
  const bool takesAll = !options.sort.empty() && !options.count;
  Selection selection(qualifierOf(options), takesAll ? kUnlimited : limit, options.count);
  Progress progress;
  readRecords(options.file, selection, progress);
  selection.finish();
  if (takesAll) {
    progress.stop();
    sortRecords(selection.records(), orderings);
    cut(selection.records(), limit);
  }
  Output output;
  if (options.count) {
    output.write(std::to_string(selection.count()) + "\n");
  } else {
    form->write({selection.records(), keys}, output, progress);
  }
  output.finish();
}

std::function<void()> declareSelect(CLI::App& app) {
  const auto options = std::make_shared<SelectOptions>();
  app.add_option("FILE", options->file,
                 "JSON or a property list, an array of dictionaries; - is standard input")
      ->type_name("")
      ->required();
  app.add_option("--where", options->where, "The qualifier that records must pass")
      ->type_name("FORMAT");
  options->arguments.declare(app);
  app.add_option("--keys", options->keys, "What to show of a record: keys or key paths")
      ->type_name("K1,K2");
  app.add_option("--sort", options->sort,
                 "Sort by KEY: ascending (the default), descending, ci-ascending or ci-descending. "
                 "Several: a stable sort, each deciding where those before it do not")
      ->type_name("KEY[:ORDER]")
      ->allow_extra_args(false);
  app.add_option("--limit", options->limit, "Take the first N records that pass, after sorting")
      ->type_name("N");
  app.add_flag("--count", options->count, "Show how many there are");
  app.add_option("--output", options->output, "table (the default), json, plist (XML) or binary")
      ->type_name("FORM");
  return [options] { runSelect(*options); };
}

}  // namespace

const Command kSelectCommand{
    "select", "Show the records of a file that a qualifier accepts",
    "Examples:\n"
    "  qx select people.json --where 'age > %d and name like %@' --arg 30 --arg 'J*'\n"
    "  qx select people.json --where '%s = %@' --arg address.city --arg Oslo --keys name\n"
    "  qx select people.json --where 'email = %@' --arg-json null --count\n"
    "  qx select people.plist --where 'age > %d' --arg 30 --output plist >grown-up.plist\n"
    "  qx select people.json --sort score:descending --sort name:ci-ascending --limit 10\n"
    "  curl -s https://example.org/items.json | qx select - --limit 10 --output json",
    &declareSelect};

}  // namespace qxtool
