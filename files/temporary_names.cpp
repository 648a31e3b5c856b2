#include <QXFoundation/directories.h>
#include <QXFoundation/process_info.h>
#include <QXFoundation/user_defaults.h>

#include "files/temporary_state.h"
#include "frame/raise.h"
#include "platform/path_text.h"
#include "platform/user_accounts.h"

namespace qx {

using detail::TemporaryState;

namespace {

constexpr char kHashes[] = "######";
constexpr std::size_t kNumberSize = 6;  // of what a position stands for
constexpr char kOperation[] = "-[NSFileManager tempFilenameFromTemplate:andRange:]";

const FileManager& present(In<FileManager> files) { return *files; }

Ref<String> freeName(const FileManager& files, const Ref<String>& pattern, Range range) {
  const TemporaryState::Hold hold(TemporaryState::instance().nameLock());
  const std::size_t length = pattern->length();
  if (range.location > length || range.length > length - range.location) {
    detail::raiseRange(kOperation, range.location, range.length, length);
  }
  const auto before = pattern->substringToIndex(range.location);
  const auto behind = pattern->substringFromIndex(range.location + range.length);
  for (std::uint32_t count = 1;; ++count) {
    const auto number = std::to_string(static_cast<std::int32_t>(count));
    auto name = before->stringByAppendingString(number)->stringByAppendingString(behind);
    if (!files.fileExistsAtPath(name)) return name;
  }
}

Ref<String> freeNameForSubstring(In<FileManager> files, StringArg pattern, StringArg substring) {
  if (!files) return nullptr;
  if (pattern.isNil() || substring.isNil()) detail::raiseNil(kOperation);
  const Ref<String> text = pattern.string();
  return freeName(present(files), text, text->rangeOfString(substring));
}

// The user default's folder, else the system's.
std::string scratchBase() {
  const PropertyValue chosen =
      UserDefaults::standardUserDefaults()->objectForKey("QXScratchDirectory");
  const std::string path = chosen.isString() ? chosen.description() : std::string();
  if (path.empty() || path == "NSTemporaryDirectory") return detail::temporaryFolder();
  return detail::expandedTilde(path);
}

std::string makeScratchFolder(FileManager& files) {
  const std::string base = scratchBase();
  files.createDirectoryAtPath(base, true, dict({{NSFilePosixPermissions, 01777}}));
  const std::string pattern = ProcessInfo::processInfo()->processName() + "-" +
                              detail::userAccounts().current().name + "-" + kHashes;
  const auto path = tempFilenameFromHashesTemplate(files, detail::joinedPath(base, pattern));
  const auto forOwner = dict({{NSFilePosixPermissions, 0700}});
  return files.createDirectoryAtPath(path, false, forOwner) ? path->utf8() : std::string();
}

}  // namespace

Ref<String> tempFilenameFromTemplate(In<FileManager> files, StringArg pattern, Range andRange) {
  if (!files) return nullptr;
  if (pattern.isNil()) detail::raiseNil(kOperation);
  return freeName(present(files), pattern.string(), andRange);
}

// A negative position becomes a place beyond every template.
Ref<String> tempFilenameFromTemplate(In<FileManager> files, StringArg pattern,
                                     std::int32_t andPosition) {
  return tempFilenameFromTemplate(files, pattern,
                                  Range{static_cast<std::size_t>(andPosition), kNumberSize});
}

Ref<String> tempFilenameFromTemplate(In<FileManager> files, StringArg pattern,
                                     StringArg andSubstring) {
  return freeNameForSubstring(files, pattern, andSubstring);
}

Ref<String> tempFilenameFromHashesTemplate(In<FileManager> files, StringArg pattern) {
  return freeNameForSubstring(files, pattern, kHashes);
}

Ref<String> scratchDirectoryPath(In<FileManager> files) {
  if (!files) return nullptr;
  TemporaryState& state = TemporaryState::instance();
  const TemporaryState::Hold hold(state.scratchLock());
  std::string path = state.scratchPath();
  bool isFolder = false;
  if (!path.empty() && files->fileExistsAtPath(path, &isFolder) && isFolder) {
    return String::from(path);
  }
  state.setScratchPath("");
  path = makeScratchFolder(*files);
  state.setScratchPath(path);
  return path.empty() ? nullptr : String::from(path);
}

}  // namespace qx
