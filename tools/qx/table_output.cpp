// Records as a table.

#include <algorithm>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "tools/qx/json_writer.h"
#include "tools/qx/output.h"
#include "tools/qx/printable.h"
#include "tools/qx/progress.h"
#include "tools/qx/record_output.h"

namespace qxtool {
namespace {

constexpr std::size_t kGap = 2;
// Columns are not cut to less than this.
constexpr std::size_t kMinCut = 8;
// Longer cells stick out: one of them shall not pad every line of a large file.
constexpr std::size_t kMaxPadded = 500;

struct Column {
  const Key& key;
  std::size_t width = 0;
  // No cell holds anything but a number.
  bool isNumeric = true;
};

// Strings as they are, everything else as JSON if it has a form there; empty for nil.
std::string cellText(const qx::PropertyValue& value) {
  if (value == nullptr) return {};
  if (value.isString()) return printable(value.description());
  std::string text;
  appendShown(text, value);
  return text;
}

// The widest that a cell may be, so that a line fits the screen.
std::size_t widthLimit(const std::vector<Column>& columns, std::size_t screen) {
  const auto lineWidth = [&](std::size_t limit) {
    const auto add = [&](std::size_t sum, const Column& c) {
      return sum + std::min(c.width, limit) + kGap;
    };
    return std::accumulate(columns.begin(), columns.end(), std::size_t{0}, add) - kGap;
  };
  std::size_t limit = std::max(screen, kMinCut);
  while (limit > kMinCut && lineWidth(limit) > screen) --limit;
  return limit;
}

void appendCell(std::string& line, const Column& column, const std::string& cell) {
  const std::size_t width = displayWidth(cell);
  const std::string padding(column.width - std::min(width, column.width), ' ');
  line += column.isNumeric ? padding + cell : cell + padding;
  line.append(kGap, ' ');
}

// Ends the line, without the blanks that its last cells are filled up with.
void writeLine(std::string& line, Output& output) {
  line.erase(line.find_last_not_of(' ') + 1);
  line += '\n';
  output.write(line);
  line.clear();
}

class Table {
 public:
  Table(const RecordView& view, const Keys& keys, Progress& progress)
      : records_(view.records), progress_(progress) {
    for (const Key& key : keys) columns_.push_back({key, displayWidth(title(key))});
    measure();
  }

  void cutToScreen(std::size_t screen) {
    const std::size_t limit = widthLimit(columns_, screen);
    for (Column& column : columns_) column.width = std::min(column.width, limit);
    cuts_ = true;
  }

  void write(Output& output) {
    std::string line;
    for (const Column& column : columns_)
      appendCell(line, column, fitting(title(column.key), column));
    writeLine(line, output);
    eachRecord("writing", [&](const qx::PropertyValue& record) {
      for (const Column& column : columns_) {
        appendCell(line, column, fitting(cellText(valueAt(record, column.key)), column));
      }
      writeLine(line, output);
    });
  }

 private:
  static std::string title(const Key& key) { return printable(key.path->utf8()); }

  std::string fitting(std::string cell, const Column& column) const {
    return cuts_ ? cutToWidth(std::move(cell), column.width) : cell;
  }

  template <class Do>
  void eachRecord(const char* doing, Do&& action) {
    for (std::size_t i = 0; i < records_.count(); ++i) {
      action(records_.begin()[i]);
      if (i % 256 == 0) progress_.tick(doing, i, records_.count());
    }
  }

  // Every cell is formatted twice, here and where it is written: all of them might not fit into
  // memory.
  void measure() {
    eachRecord("measuring", [&](const qx::PropertyValue& record) {
      for (Column& column : columns_) {
        const qx::PropertyValue value = valueAt(record, column.key);
        column.width = std::max(column.width, displayWidth(cellText(value)));
        column.isNumeric =
            column.isNumeric && (value == nullptr || (value.isNumber() && !value.to<bool>()));
      }
    });
    for (Column& column : columns_) column.width = std::min(column.width, kMaxPadded);
  }

  const qx::Array& records_;
  Progress& progress_;
  std::vector<Column> columns_;
  bool cuts_ = false;
};

}  // namespace

void writeTable(const RecordView& view, Output& output, Progress& progress) {
  const Keys all = view.keys.empty() ? keysOf(view.records) : Keys();
  const Keys& keys = view.keys.empty() ? all : view.keys;
  if (keys.empty()) return;
  Table table(view, keys, progress);
  if (outputIsTerminal()) {
    table.cutToScreen(terminalWidth());
    progress.stop();
  }
  table.write(output);
}

}  // namespace qxtool
