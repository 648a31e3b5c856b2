// What a program keeps about files beside their content: tags, attributes, a lock, and a link with
// parameters.
//
//     example_files [FOLDER]      works on a file in FOLDER; without one in a scratch folder
//
// It checks what it reads back, and ends with 1 where something differs. Where the file system
// takes no attributes it says so and goes on.

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include <QXFoundation/color_tag.h>
#include <QXFoundation/directories.h>
#include <QXFoundation/extended_attributes.h>
#include <QXFoundation/file_lock.h>
#include <QXFoundation/url_query.h>

namespace {

// The folder is this process's own. The library leaves it there, so that its maker removes it.
class ScratchFolder {
 public:
  ScratchFolder() {
    const auto path = scratchDirectoryPath(qx::FileManager::defaultManager());
    if (path != nullptr) path_ = path->utf8();
  }
  ~ScratchFolder() {
    std::error_code ignored;
    if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

bool failed(const std::string& doing, const qx::Ref<qx::Error>& error) {
  std::cerr << "cannot " << doing;
  if (error != nullptr) std::cerr << ": " << error->localizedDescription();
  std::cerr << '\n';
  return false;
}

// A name that nothing has yet.
std::string newName(const std::string& folder) {
  const auto files = qx::FileManager::defaultManager();
  return tempFilenameFromHashesTemplate(files, folder + "/report-######.txt")->utf8();
}

bool tagReport(const qx::Ref<qx::URL>& file) {
  qx::Ref<qx::Error> error;
  const auto tags = qx::array(qx::QXColorTag::colorTagWithName("Work", 0),
                              qx::QXColorTag::colorTagWithName("Urgent", 6));
  if (!setColorTags(file, tags, &error)) return failed("tag the report", error);
  const auto stored = colorTagsWithError(file);
  std::cout << "tags:";
  for (const auto& tag : *stored) std::cout << ' ' << tag.description();
  std::cout << '\n';
  return stored->isEqual(tags);
}

bool describeReport(const qx::Ref<qx::URL>& file) {
  qx::Ref<qx::Error> error;
  const auto wanted =
      qx::dict({{"org.example.authors", qx::array("Ann", "Bob")}, {"org.example.pages", 12}});
  if (!setExtendedAttributes(file, wanted, &error)) return failed("describe the report", error);
  const qx::PropertyValue pages = valueOfExtendedAttributeWithName(file, "org.example.pages");
  std::cout << "pages: " << pages.description() << '\n';
  // What is not there is an error to read, and none to remove.
  if (!valueOfExtendedAttributeWithName(file, "org.example.editor", &error).isNil()) return false;
  std::cout << "no editor: " << error->localizedDescription() << '\n';
  return pages == 12 && removeExtendedAttributeWithName(file, "org.example.editor", &error);
}

bool annotate(const std::string& path) {
  const auto file = qx::URL::fileURLWithPath(path);
  qx::Ref<qx::Error> error;
  if (!setExtendedAttributeValue(file, "draft", "org.example.state", &error)) {
    if (error->code() != ENOTSUP) return failed("say what state the report is in", error);
    std::cout << "no tags and attributes here: " << error->localizedDescription() << '\n';
    return true;
  }
  return tagReport(file) && describeReport(file);
}

// Two that want the same file: the second is told who has it.
bool appendUnderLock(const std::string& path) {
  qx::Ref<qx::Error> error;
  auto lock = qx::QXFileLock::lock(path, &error);
  if (!lock.isHeld()) return failed("lock the report", error);
  const auto second = qx::QXFileLock::lock(path, &error);
  if (second.isHeld() || second.record() == nullptr) return false;
  const bool isOwn = second.record()->isEqual(lock.record());
  std::cout << "held by " << (isOwn ? "this very process\n" : "another process\n");
  std::ofstream(path, std::ios::app) << "It still is.\n";
  if (!lock.unlock(&error)) return failed("unlock the report", error);
  return !std::filesystem::exists(path + ".lock");
}

// A link to the report's page. What is not named keeps its place and its bytes.
bool linkReport() {
  const auto page = qx::URL::URLWithString("https://example.org/report?lang=de&page=1&q=%7e#end");
  const auto link = URLByAppendingQueryParameters(page, qx::dict({{"page", "2"}, {"by", "A & B"}}));
  std::cout << "link: " << link->description() << '\n';
  return link->text() == "https://example.org/report?lang=de&q=%7e&page=2&by=A%20%26%20B#end";
}

bool run(const std::string& folder) {
  const std::string path = newName(folder);
  if (!(std::ofstream(path) << "All is well.\n").flush()) {
    std::cerr << path << " cannot be written\n";
    return false;
  }
  const bool isDone = annotate(path) && appendUnderLock(path) && linkReport();
  std::cout << "the report:\n" << std::ifstream(path).rdbuf();
  std::filesystem::remove(path);
  return isDone;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc > 1) return run(argv[1]) ? 0 : 1;
  const ScratchFolder folder;
  if (folder.path().empty()) {
    std::cerr << "no scratch folder can be made\n";
    return 1;
  }
  return run(folder.path()) ? 0 : 1;
}
