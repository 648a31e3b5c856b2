#include <algorithm>
#include <fstream>
#include <iterator>
#include <mutex>
#include <string_view>

#include <QXFoundation/process_info.h>

#include "frame/library_class.h"

namespace qx {
namespace {

// The arguments as the kernel keeps them: each with a NUL behind it, empty ones included.
Ref<Array> readCommandLine() {
  std::ifstream file("/proc/self/cmdline", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  auto arguments = MutableArray::init();
  for (std::size_t start = 0; start < bytes.size();) {
    const std::size_t end = std::min(bytes.find('\0', start), bytes.size());
    arguments->addObject(String::from(std::string_view(bytes).substr(start, end - start)));
    start = end + 1;
  }
  return Array::from(arguments->begin(), arguments->count());
}

class SystemProcessInfo : public ProcessInfo {
 public:
  Ref<Array> arguments() const override { return arguments_; }

 private:
  const Ref<Array> arguments_ = readCommandLine();
};

void describe(ClassBuilder<SystemProcessInfo>& c) {
  c.name("QXSystemProcessInfo").inherits<ProcessInfo>();
}

const Class& classObject(detail::Type<SystemProcessInfo>) {
  return detail::buildLibraryClass<SystemProcessInfo>();
}

struct Current {
  std::mutex mutex;
  Ref<ProcessInfo> info;
};

Current& current() {
  static auto* c = new Current;
  return *c;
}

}  // namespace

ProcessInfo::~ProcessInfo() = default;

Ref<ProcessInfo> ProcessInfo::processInfo() {
  const std::scoped_lock lock(current().mutex);
  if (current().info == nullptr) current().info = make<SystemProcessInfo>();
  return current().info;
}

void ProcessInfo::setProcessInfo(In<ProcessInfo> info) {
  Ref<ProcessInfo> other(info.get());
  const std::scoped_lock lock(current().mutex);
  std::swap(current().info, other);
}

std::string ProcessInfo::processName() const {
  const PropertyValue path = arguments()->firstObject();
  const std::string text = path.description();
  return text.substr(text.rfind('/') + 1);
}

void describe(ClassBuilder<ProcessInfo>& c) {
  c.name("NSProcessInfo").inherits<Object>();
  c.operation("arguments", &ProcessInfo::arguments);
  c.operation("processName", &ProcessInfo::processName);
}

const Class& classObject(detail::Type<ProcessInfo>) {
  return detail::buildLibraryClass<ProcessInfo>();
}

}  // namespace qx
