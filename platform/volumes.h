#pragma once

// Which mounted volume a path lies on, and what people call it.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/replaceable.h"

namespace qx::detail {

// A line of the system's mount table.
struct MountedVolume {
  std::string mountPoint;
  unsigned major = 0;  // the device's number
  unsigned minor = 0;
  std::string source;  // mostly the device's path
};

// Reads the text of /proc/self/mountinfo. Lines of another form are left out.
std::vector<MountedVolume> parseMountTable(std::string_view text);

// A name as udev writes it in /dev/disk/by-label: "\x20" stands for the byte 0x20.
std::string unescapedLabel(std::string_view text);

// What the system knows of volumes, in one place that tests can replace. What can not be found out
// is empty.
class VolumeSystem {
 public:
  VolumeSystem() = default;
  VolumeSystem(const VolumeSystem&) = delete;
  VolumeSystem& operator=(const VolumeSystem&) = delete;
  virtual ~VolumeSystem() = default;

  // The text of the mount table.
  virtual std::string mountTable();
  // The label of a volume.
  virtual std::string label(const MountedVolume& volume);
  // The absolute path of the process's directory.
  virtual std::string currentDirectory();
};

inline VolumeSystem& volumeSystem() { return Replaceable<VolumeSystem>::inUse(); }
using ReplacedVolumeSystem = Replaceable<VolumeSystem>::Replacement;

// A path's volume.
struct VolumeOfPath {
  // Its label, else the last component of its mount point, else "Root".
  std::string name;
  // The length of its mount point, 0 for "/": what follows is the path on the volume.
  std::size_t mountPointSize = 0;
};

// By the text of the path, which is absolute and has no "." or "..": symbolic links are not
// followed.
VolumeOfPath volumeOfPath(std::string_view path);

}  // namespace qx::detail
