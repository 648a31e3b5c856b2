#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

#include <QXFoundation/data_cursor.h>
#include <QXFoundation/exception.h>

#include "tests/support/failing_file_calls.h"
#include "tests/support/temporary_folder.h"

namespace qx {
namespace {

using test_support::FailingFileCalls;
using test_support::TemporaryFolder;
using test_support::writeBytes;
using Lines = std::vector<std::string>;

Lines linesOf(const Ref<QXDataCursor>& cursor) {
  Lines lines;
  while (const auto line = cursor->readLine()) lines.push_back(line->utf8());
  return lines;
}

// Reads as over no data at all.
void expectEmpty(const Ref<QXDataCursor>& cursor) {
  ASSERT_NE(cursor, nullptr);
  EXPECT_FALSE(cursor->hasAvailableData());
  EXPECT_EQ(cursor->readLine(), nullptr);
  EXPECT_EQ(cursor->readStringOfLength(0)->length(), 0U);
  EXPECT_THROW((void)cursor->readStringOfLength(1), RangeException);
}

TEST(DataCursorFile, ReadsTheWholeFile) {
  const TemporaryFolder folder;
  writeBytes(folder / "a", "one\r\ntwo\n\nfour");
  EXPECT_EQ(linesOf(QXDataCursor::initWithFile(folder / "a")), (Lines{"one", "two", "", "four"}));
  // Short enough to stand in the cursor itself.
  writeBytes(folder / "b", "x\ny");
  EXPECT_EQ(linesOf(QXDataCursor::initWithFile(folder / "b")), (Lines{"x", "y"}));
}

TEST(DataCursorFile, ReadsFilesWithNamesBeyondAscii) {
  const TemporaryFolder folder;
  writeBytes(folder / "caf\xC3\xA9", "one");
  EXPECT_EQ(linesOf(QXDataCursor::initWithFile(String::from(folder / "caf\xC3\xA9"))),
            Lines{"one"});
}

TEST(DataCursorFile, ReadsFilesThatDoNotTellTheirSize) {
  const auto cursor = QXDataCursor::initWithFile("/proc/self/status");
  EXPECT_TRUE(cursor->readLine()->utf8().starts_with("Name:\t"));
  EXPECT_GT(linesOf(cursor).size(), 10U);
}

TEST(DataCursorFile, HasNothingToReadWhereThereIsNoSuchFile) {
  const TemporaryFolder folder;
  writeBytes(folder / "empty", "");
  writeBytes(folder / "a", "one");
  ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
  expectEmpty(QXDataCursor::initWithFile(folder / "missing"));
  expectEmpty(QXDataCursor::initWithFile(folder / "a/below"));
  expectEmpty(QXDataCursor::initWithFile(folder / "empty"));
  expectEmpty(QXDataCursor::initWithFile(folder / "pipe"));
  expectEmpty(QXDataCursor::initWithFile(folder.path()));
  expectEmpty(QXDataCursor::initWithFile(""));
  expectEmpty(QXDataCursor::initWithFile(nullptr));
  expectEmpty(QXDataCursor::initWithFile((folder / "a") + std::string("\0b", 2)));
}

TEST(DataCursorFile, HasNothingToReadWhereReadingFails) {
  const TemporaryFolder folder;
  writeBytes(folder / "a", "one\ntwo");
  for (const char* call : {"open", "fstat", "read"}) {
    FailingFileCalls calls(call, 1, EIO);
    const detail::ReplacedFileCalls replaced(calls);
    expectEmpty(QXDataCursor::initWithFile(folder / "a"));
    EXPECT_TRUE(calls.hasFailed) << call;
  }
  // Half of a file is none either.
  FailingFileCalls calls("read", 2, EIO);
  const detail::ReplacedFileCalls replaced(calls);
  expectEmpty(QXDataCursor::initWithFile(folder / "a"));
  EXPECT_TRUE(calls.hasFailed);
}

TEST(DataCursorFile, DoesNotCareWhatHappensToTheFileLater) {
  const TemporaryFolder folder;
  const std::string text(100000, 'x');
  writeBytes(folder / "a", text + "\nend");
  const auto cursor = QXDataCursor::initWithFile(folder / "a");
  ASSERT_EQ(truncate((folder / "a").c_str(), 0), 0);
  EXPECT_EQ(linesOf(cursor), (Lines{text, "end"}));
}

// Cuts the file off, or lets it grow, while it is read.
class ChangingFile : public detail::FileCalls {
 public:
  ChangingFile(std::string path, off_t newLength) : path_(std::move(path)), newLength_(newLength) {}
  ssize_t read(int file, void* bytes, std::size_t count) override {
    const ssize_t got = FileCalls::read(file, bytes, std::min(count, std::size_t{4}));
    if (!std::exchange(hasChanged_, true)) {
      EXPECT_EQ(truncate(path_.c_str(), newLength_), 0);
    }
    return got;
  }

 private:
  std::string path_;
  off_t newLength_;
  bool hasChanged_ = false;
};

TEST(DataCursorFile, YieldsWhatWasReadOfAFileThatChangesMeanwhile) {
  const TemporaryFolder folder;
  const std::pair<off_t, std::string> cases[] = {
      {0, "one\n"}, {6, "one\ntw"}, {10, "one\ntwo" + std::string(3, '\0')}};
  for (const auto& [length, content] : cases) {
    writeBytes(folder / "a", "one\ntwo");
    ChangingFile calls(folder / "a", length);
    const detail::ReplacedFileCalls replaced(calls);
    const auto cursor = QXDataCursor::initWithFile(folder / "a");
    EXPECT_EQ(cursor->readStringOfLength(content.size())->utf8(), content);
    EXPECT_FALSE(cursor->hasAvailableData());
  }
}

}  // namespace
}  // namespace qx
