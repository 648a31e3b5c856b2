// Counts the words of files on a thread of its own, which reports to the main thread as it goes.
//
//     example_threads              the example data
//     example_threads FILE...
//
// The main thread alone writes: calls reach it one at a time, in the order of their sending, so
// that no lock is needed. A file that can not be read is told, and makes the program end with 1.

#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include <QXFoundation/class_builder.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/run_loop.h>
#include <QXFoundation/thread_message.h>

namespace {

// Lives on the main thread. Each call holds its target and arguments for ever, unless the operation
// releases what it was given.
class Report : public qx::Object {
 public:
  void counted(const qx::Ref<qx::Dictionary>& file, int percent) {
    std::cout << percent << " %  " << file->objectForKey("name").description() << ": "
              << file->objectForKey("lines").description() << " lines, "
              << file->objectForKey("words").description() << " words\n";
    words_ += file->objectForKey("words").integerValue();
    file->release();
    release();
  }
  void failed(const qx::Ref<qx::String>& name) {
    std::cerr << name->utf8() << ": this file can not be read\n";
    isComplete_ = false;
    name->release();
    release();
  }
  void finish() {
    std::cout << words_ << " words altogether\n";
    qx::RunLoop::currentRunLoop()->stop();
    release();
  }
  bool isComplete() const { return isComplete_; }

 private:
  std::int64_t words_ = 0;
  bool isComplete_ = true;
};
void describe(qx::ClassBuilder<Report>& c) {
  c.name("Report")
      .operation("counted:percent:", &Report::counted)
      .operation("failed:", &Report::failed)
      .operation("finish", &Report::finish);
}

// What was counted in a file; nil where it can not be read.
qx::Ref<qx::Dictionary> count(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::int64_t lines = 0;
  std::int64_t words = 0;
  bool isInWord = false;
  for (char c = 0; file.get(c);) {
    const bool isSpace = c == ' ' || c == '\n' || c == '\t' || c == '\r';
    words += !isSpace && !isInWord;
    lines += c == '\n';
    isInWord = !isSpace;
  }
  if (!file.eof() || file.bad()) return nullptr;
  const std::string name = path.substr(path.rfind('/') + 1);
  return qx::dict({{"name", name}, {"lines", lines}, {"words", words}});
}

void work(const std::vector<std::string>& paths, const qx::Ref<qx::QXThreadMessage>& toMain,
          const qx::Ref<Report>& report) {
  for (std::size_t i = 0; i < paths.size(); ++i) {
    const auto percent = static_cast<int>((i + 1) * 100 / paths.size());
    if (const auto file = count(paths[i])) {
      toMain->sendMessageTo(report, "counted:percent:", file, percent);
    } else {
      toMain->sendMessageTo(report, "failed:", paths[i]);
    }
  }
  toMain->sendMessageTo(report, "finish");
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::string> paths(argv + 1, argv + argc);
  if (paths.empty()) {
    paths = {EXAMPLES_DIR "/data/downloads.csv", EXAMPLES_DIR "/data/passwd",
             EXAMPLES_DIR "/data/settings-new.plist"};
  }
  const auto report = qx::make<Report>();
  const auto toMain = qx::QXThreadMessage::init();  // made where the calls are to be performed
  std::thread worker([&] { work(paths, toMain, report); });
  qx::RunLoop::currentRunLoop()->run();  // until `finish` stops it
  worker.join();
  return report->isComplete() ? 0 : 1;
}
