// Runs a fuzz target, linked with this, over the files of the folders given, and over every prefix
// of the small ones: the kept inputs as a plain test, with any compiler.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kSmall = 512;

void runOne(const std::string& bytes) {
  // A copy of just that size, so that a read beyond it is seen.
  const std::string exact(bytes.begin(), bytes.end());
  (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(exact.data()), exact.size());
}

void runFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  runOne(bytes);
  for (std::size_t n = 0; bytes.size() <= kSmall && n < bytes.size(); ++n)
    runOne(bytes.substr(0, n));
}

}  // namespace

int main(int argc, char** argv) {
  std::size_t files = 0;
  for (int i = 1; i < argc; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      runFile(entry.path());
      ++files;
    }
  }
  std::printf("%zu kept inputs\n", files);
  return files == 0 ? 1 : 0;
}
