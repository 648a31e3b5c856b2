#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include <QXFoundation/QXFoundation.h>

namespace {

class Fake : public qx::ProcessInfo {
 public:
  explicit Fake(qx::Ref<qx::Array> a) : given(std::move(a)) {}
  qx::Ref<qx::Array> arguments() const override { return given; }
  qx::Ref<qx::Array> given;
};
void describe(qx::ClassBuilder<Fake>& c) { c.name("ProcessInfoFake").inherits<qx::ProcessInfo>(); }

TEST(ProcessInfo, GivesTheCommandLineInOrder) {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  std::string joined;
  const auto arguments = qx::ProcessInfo::processInfo()->arguments();
  for (const qx::PropertyValue& argument : *arguments) {
    joined += argument.description() + '\0';
  }
  EXPECT_EQ(joined, bytes);
  EXPECT_FALSE(bytes.empty());
}

TEST(ProcessInfo, IsNamedAfterTheProgram) {
  const auto info = qx::ProcessInfo::processInfo();
  const std::string path = info->arguments()->objectAtIndex(0).description();
  EXPECT_TRUE(path.ends_with(info->processName()));
  EXPECT_EQ(info->processName().find('/'), std::string::npos);
  EXPECT_EQ(qx::make<Fake>(qx::array("/usr/bin/tool", "x"))->processName(), "tool");
  EXPECT_EQ(qx::make<Fake>(qx::array("tool"))->processName(), "tool");
  EXPECT_EQ(qx::make<Fake>(qx::Array::init())->processName(), "");
}

TEST(ProcessInfo, MayBeReplaced) {
  const auto before = qx::ProcessInfo::processInfo();
  const auto fake = qx::make<Fake>(qx::array("p", "q"));
  qx::ProcessInfo::setProcessInfo(fake);
  EXPECT_EQ(qx::ProcessInfo::processInfo().get(), fake.get());
  EXPECT_EQ(qx::performSelector(qx::ProcessInfo::processInfo(), "arguments"), qx::array("p", "q"));
  qx::ProcessInfo::setProcessInfo(nullptr);
  EXPECT_EQ(qx::PropertyValue(qx::ProcessInfo::processInfo()->arguments()),
            qx::PropertyValue(before->arguments()));
}

TEST(ProcessInfo, IsFoundByName) {
  EXPECT_EQ(qx::classNamed("NSProcessInfo"), &qx::classOf<qx::ProcessInfo>());
}

}  // namespace
