#include "platform/url_path.h"

#include <algorithm>
#include <vector>

#include "platform/volumes.h"

namespace qx::detail {
namespace {

// Above the root there is the root.
std::string resolved(std::string_view path) {
  std::vector<std::string_view> components;
  for (std::size_t start = 0; start <= path.size();) {
    const std::size_t end = std::min(path.find('/', start), path.size());
    const std::string_view component = path.substr(start, end - start);
    start = end + 1;
    if (component.empty() || component == ".") continue;
    if (component != "..") {
      components.push_back(component);
    } else if (!components.empty()) {
      components.pop_back();
    }
  }
  std::string out;
  for (const std::string_view component : components) out.append("/").append(component);
  return out.empty() ? "/" : out;
}

}  // namespace

std::optional<FilePathURL> FilePathURL::fromPosixPath(std::string_view path, bool isDirectory) {
  if (path.empty() || path.find('\0') != std::string_view::npos) return std::nullopt;
  if (path.front() == '/') return FilePathURL(resolved(path), isDirectory);
  const std::string base = volumeSystem().currentDirectory();
  if (!base.starts_with('/')) return std::nullopt;
  return FilePathURL(resolved(base + "/" + std::string(path)), isDirectory);
}

std::string FilePathURL::colonPath() const {
  const VolumeOfPath volume = volumeOfPath(path_);
  std::string out = volume.name;
  std::replace(out.begin(), out.end(), ':', '/');
  std::string below = path_.substr(volume.mountPointSize);
  if (below == "/") below.clear();
  std::transform(below.begin(), below.end(), below.begin(), [](char c) {
    return c == '/' ? ':' : c == ':' ? '/' : c;
  });
  out += below;
  if (isDirectory_ || below.empty()) out += ':';
  return out;
}

}  // namespace qx::detail
