#include "platform/volumes.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>

#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace qx::detail {
namespace {

// Takes the text up to the next mark off the front; what follows the mark remains.
std::string_view takeUntil(std::string_view& text, char mark) {
  const std::size_t at = text.find(mark);
  const std::string_view piece = text.substr(0, at);
  text.remove_prefix(at == std::string_view::npos ? text.size() : at + 1);
  return piece;
}

// Bytes that the text writes as a backslash, `lead` and `count` digits of the base.
std::string unescaped(std::string_view text, std::string_view lead, std::size_t count, int base) {
  std::string out;
  while (!text.empty()) {
    unsigned byte = 0;
    const std::string_view digits =
        text.starts_with(lead) ? text.substr(lead.size(), count) : std::string_view();
    const auto [end, error] =
        std::from_chars(digits.data(), digits.data() + digits.size(), byte, base);
    if (digits.size() == count && error == std::errc() && end == digits.data() + count &&
        byte <= 0xFF) {
      out.push_back(static_cast<char>(byte));
      text.remove_prefix(lead.size() + count);
    } else {
      out.push_back(text.front());
      text.remove_prefix(1);
    }
  }
  return out;
}

bool readNumber(std::string_view text, unsigned& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

// "36 35 98:0 /root /mount/point options ... - type source superoptions"
bool parseLine(std::string_view line, MountedVolume& volume) {
  takeUntil(line, ' ');
  takeUntil(line, ' ');
  std::string_view device = takeUntil(line, ' ');
  if (!readNumber(takeUntil(device, ':'), volume.major) || !readNumber(device, volume.minor))
    return false;
  takeUntil(line, ' ');
  volume.mountPoint = unescaped(takeUntil(line, ' '), "\\", 3, 8);
  const std::size_t separator = line.find(" - ");
  if (!volume.mountPoint.starts_with('/') || separator == std::string_view::npos) return false;
  line.remove_prefix(separator + 3);
  takeUntil(line, ' ');
  volume.source = unescaped(takeUntil(line, ' '), "\\", 3, 8);
  return true;
}

bool holds(std::string_view mountPoint, std::string_view path) {
  if (mountPoint == "/") return true;
  return path.starts_with(mountPoint) &&
         (path.size() == mountPoint.size() || path[mountPoint.size()] == '/');
}

// The device's number, from its own file where the source names one: file systems that span
// devices have another in the table.
dev_t deviceOf(const MountedVolume& volume) {
  struct stat about{};
  if (volume.source.starts_with('/') && ::stat(volume.source.c_str(), &about) == 0 &&
      S_ISBLK(about.st_mode)) {
    return about.st_rdev;
  }
  return makedev(volume.major, volume.minor);
}

}  // namespace

std::vector<MountedVolume> parseMountTable(std::string_view text) {
  std::vector<MountedVolume> volumes;
  while (!text.empty()) {
    MountedVolume volume;
    if (parseLine(takeUntil(text, '\n'), volume)) volumes.push_back(std::move(volume));
  }
  return volumes;
}

std::string unescapedLabel(std::string_view text) { return unescaped(text, "\\x", 2, 16); }

std::string VolumeSystem::mountTable() {
  std::ifstream file("/proc/self/mountinfo", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string VolumeSystem::label(const MountedVolume& volume) {
  const dev_t device = deviceOf(volume);
  std::error_code error;
  std::filesystem::directory_iterator entry("/dev/disk/by-label", error);
  for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
    struct stat about{};
    if (::stat(entry->path().c_str(), &about) == 0 && S_ISBLK(about.st_mode) &&
        about.st_rdev == device) {
      return unescapedLabel(entry->path().filename().native());
    }
  }
  return {};
}

std::string VolumeSystem::currentDirectory() {
  std::error_code error;
  const std::filesystem::path directory = std::filesystem::current_path(error);
  return error ? std::string() : directory.native();
}

// Of two volumes at one place the later covers the earlier.
VolumeOfPath volumeOfPath(std::string_view path) {
  VolumeSystem& system = volumeSystem();
  const std::vector<MountedVolume> all = parseMountTable(system.mountTable());
  const MountedVolume* nearest = nullptr;
  for (const MountedVolume& volume : all) {
    if (holds(volume.mountPoint, path) &&
        (nearest == nullptr || volume.mountPoint.size() >= nearest->mountPoint.size())) {
      nearest = &volume;
    }
  }
  if (nearest == nullptr) return {"Root", 0};
  const std::string_view point = nearest->mountPoint;
  VolumeOfPath found{system.label(*nearest), point == "/" ? 0 : point.size()};
  if (found.name.empty()) found.name = point.substr(point.rfind('/') + 1);
  if (found.name.empty()) found.name = "Root";
  return found;
}

}  // namespace qx::detail
