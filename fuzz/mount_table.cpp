// Arbitrary bytes as the system's mount table, and arbitrary paths: every path that is one has a
// volume, and its form with colons can be turned back.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/url_path.h"
#include "platform/volumes.h"

namespace {

class Table : public qx::detail::VolumeSystem {
 public:
  std::string mountTable() override { return std::string(table); }
  std::string label(const qx::detail::MountedVolume& volume) override {
    return qx::detail::unescapedLabel(volume.source);
  }
  std::string currentDirectory() override { return "/where/we are"; }
  std::string_view table;
};

void require(bool condition) {
  if (!condition) std::abort();
}

// The components that follow the name of the volume, with slashes.
std::string below(std::string_view colonPath, std::string_view name) {
  std::string rest(colonPath.substr(name.size()));
  for (char& c : rest) c = c == ':' ? '/' : c == '/' ? ':' : c;
  if (!rest.empty() && rest.back() == '/') rest.pop_back();
  return rest;
}

}  // namespace

// The first line is a path, the rest a table.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string_view path = text.substr(0, text.find('\n'));
  Table system;
  system.table = text.substr(std::min(path.size() + 1, text.size()));
  const qx::detail::ReplacedVolumeSystem replaced(system);
  for (const auto& volume : qx::detail::parseMountTable(system.table))
    require(volume.mountPoint.starts_with('/'));
  const auto url = qx::detail::FilePathURL::fromPosixPath(path, path.ends_with('/'));
  require(url.has_value() == (!path.empty() && path.find('\0') == std::string_view::npos));
  if (!url) return 0;
  const std::string& posix = url->posixPath();
  require(posix.starts_with('/') && posix.find("//") == std::string::npos);
  require(posix == "/" || !posix.ends_with('/'));
  const auto volume = qx::detail::volumeOfPath(posix);
  require(!volume.name.empty() && volume.mountPointSize <= posix.size());
  const std::string colons = url->colonPath();
  require(below(colons, volume.name) == (posix == "/" ? "" : posix.substr(volume.mountPointSize)));
  return 0;
}
