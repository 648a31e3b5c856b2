#include "platform/url_path.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <string>

#include "platform/volumes.h"

namespace qx::detail {
namespace {

// Volumes as a desktop might have them.
class Desktop : public VolumeSystem {
 public:
  std::string mountTable() override {
    return "22 1 8:2 / / rw,relatime shared:1 - ext4 /dev/sda2 rw\n"
           "23 22 0:5 / /dev rw - devtmpfs udev rw\n"
           "no line of a table\n"
           "24 22 8:3 / /home rw shared:2 - ext4 /dev/sda3 rw\n"
           "25 24 8:17 / /home/a/My\\040Stick rw - vfat /dev/sdb1 rw\n"
           "26 22 8:33 / /mnt/data rw - ext4 /dev/sdc1 rw\n"
           "27 26 8:34 / /mnt/data rw master:1 shared:9 - ext4 /dev/sdc2 rw\n";
  }
  std::string label(const MountedVolume& volume) override { return labels[volume.source]; }
  std::string currentDirectory() override { return directory; }

  std::map<std::string, std::string> labels;
  std::string directory = "/home/a";
};

class URLPath : public testing::Test {
 protected:
  std::string colonPath(std::string_view path) {
    const auto url = FilePathURL::fromPosixPath(path, path.ends_with('/'));
    return url ? url->colonPath() : "nothing";
  }
  Desktop desktop;
  ReplacedVolumeSystem replaced{desktop};
};

TEST_F(URLPath, BeginsWithTheNameOfTheVolume) {
  desktop.labels = {{"/dev/sda2", "System"}, {"/dev/sdb1", "Photos"}};
  EXPECT_EQ(colonPath("/usr/bin/env"), "System:usr:bin:env");
  EXPECT_EQ(colonPath("/home/b/x"), "home:b:x");
  EXPECT_EQ(colonPath("/homes/b"), "System:homes:b");
  EXPECT_EQ(colonPath("/home/a/My Stick/1.jpg"), "Photos:1.jpg");
  desktop.labels.clear();
  EXPECT_EQ(colonPath("/usr/bin/env"), "Root:usr:bin:env");
  EXPECT_EQ(colonPath("/home/a/My Stick/1.jpg"), "My Stick:1.jpg");
}

TEST_F(URLPath, TheLaterOfTwoVolumesAtOnePlaceCounts) {
  desktop.labels = {{"/dev/sdc1", "Old"}, {"/dev/sdc2", "New"}};
  EXPECT_EQ(colonPath("/mnt/data/x"), "New:x");
}

TEST_F(URLPath, DirectoriesAndVolumesEndWithAColon) {
  EXPECT_EQ(colonPath("/"), "Root:");
  EXPECT_EQ(colonPath("/usr/"), "Root:usr:");
  EXPECT_EQ(colonPath("/usr"), "Root:usr");
  EXPECT_EQ(colonPath("/home"), "home:");
  EXPECT_EQ(colonPath("/home/"), "home:");
}

TEST_F(URLPath, ColonsAndSlashesChangeTheirPlaces) {
  EXPECT_EQ(colonPath("/a:b/c"), "Root:a/b:c");
  desktop.labels = {{"/dev/sda2", "Big:Disk"}};
  EXPECT_EQ(colonPath("/x"), "Big/Disk:x");
}

TEST_F(URLPath, RelativePathsStartAtTheCurrentDirectory) {
  EXPECT_EQ(colonPath("x"), "home:a:x");
  EXPECT_EQ(colonPath("./x/../y/"), "home:a:y:");
  EXPECT_EQ(colonPath("../../.."), "Root:");
  EXPECT_EQ(colonPath("~/x"), "home:a:~:x");
  desktop.directory = "";
  EXPECT_EQ(colonPath("x"), "nothing");
  EXPECT_EQ(colonPath("/x"), "Root:x");
}

TEST_F(URLPath, WhatIsNoPathMakesNoURL) {
  EXPECT_EQ(colonPath(""), "nothing");
  EXPECT_EQ(colonPath(std::string_view("/a\0b", 4)), "nothing");
}

TEST_F(URLPath, PosixPathsAreResolvedByTheirText) {
  const std::pair<const char*, const char*> cases[] = {
      {"/", "/"},         {"//", "/"},       {"/..", "/"},        {"/a//b/", "/a/b"},
      {"/a/./b", "/a/b"}, {"/a/../b", "/b"}, {"/a/b/../..", "/"}, {"/...", "/..."},
  };
  for (const auto& [path, resolved] : cases)
    EXPECT_EQ(FilePathURL::fromPosixPath(path, false)->posixPath(), resolved) << path;
}

TEST(Volumes, TablesAreReadLineByLine) {
  const auto volumes = parseMountTable(
      "1 2 3:4 / /a\\040b\\134 rw - ext4 /dev/x\\011y rw\n"
      "1 2 3:4 / relative rw - ext4 /dev/x rw\n"
      "1 2 x:4 / /a rw - ext4 /dev/x rw\n"
      "1 2 3:4 / /a rw ext4 /dev/x rw\n"
      "\n"
      "5 6 7:8 / /c rw shared:1 master:2 - tmpfs none rw");
  ASSERT_EQ(volumes.size(), 2U);
  EXPECT_EQ(volumes[0].mountPoint, "/a b\\");
  EXPECT_EQ(volumes[0].source, "/dev/x\ty");
  EXPECT_EQ(volumes[0].major, 3U);
  EXPECT_EQ(volumes[0].minor, 4U);
  EXPECT_EQ(volumes[1].mountPoint, "/c");
  EXPECT_EQ(volumes[1].source, "none");
}

TEST(Volumes, LabelsAreUnescaped) {
  EXPECT_EQ(unescapedLabel("My\\x20Disk"), "My Disk");
  EXPECT_EQ(unescapedLabel("a\\x2"), "a\\x2");
  EXPECT_EQ(unescapedLabel("\\xzz\\x41"), "\\xzzA");
  EXPECT_EQ(unescapedLabel(""), "");
}

TEST(Volumes, TheSystemKnowsWhereItIs) {
  VolumeSystem system;
  char directory[4096];
  ASSERT_NE(::getcwd(directory, sizeof directory), nullptr);
  EXPECT_EQ(system.currentDirectory(), directory);
  const auto mounted = parseMountTable(system.mountTable());
  const auto found = volumeOfPath("/proc/self");
  for (const MountedVolume& volume : mounted) {
    EXPECT_TRUE(volume.mountPoint.starts_with('/'));
    EXPECT_EQ(system.label(volume).find('\0'), std::string::npos);
    if (volume.mountPoint == "/proc") {
      EXPECT_EQ(found.name, "proc");
      EXPECT_EQ(found.mountPointSize, 5U);
    }
  }
  EXPECT_FALSE(volumeOfPath("/").name.empty());
}

}  // namespace
}  // namespace qx::detail
