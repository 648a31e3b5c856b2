#pragma once

// What tests of the run loop start from.

#include <gtest/gtest.h>
#include <poll.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace qx::platform_test {

// Writes down the texts that arrive, and does what a test wants with them.
class Listener : public Object, public PortDelegate {
 public:
  void handlePortMessage(const PortMessage& m) override {
    heard.push_back(m.components()->firstObject().description());
    const std::string text = heard.back();  // nested messages may move the list
    if (then) then(text);
  }
  std::vector<std::string> heard;
  std::function<void(const std::string&)> then;
};
inline void describe(ClassBuilder<Listener>& c) {
  c.name("PlatformTestListener").conforms<PortDelegate>();
}

inline void send(const Ref<Port>& port, StringArg text) {
  ASSERT_TRUE(PortMessage::initWithSendPort(port, nullptr, array(text))
                  ->sendBeforeDate(Date::distantFuture()));
}

// Whether another loop would look at this one now.
inline bool isReadable(const RunLoop& loop, int milliseconds = 0) {
  pollfd watched{loop.fileDescriptor(), POLLIN, 0};
  return ::poll(&watched, 1, milliseconds) == 1;
}

// Ports of this thread's loop, which are taken out of it at the end.
struct LoopTest : testing::Test {
  ~LoopTest() override {
    for (const auto& [port, mode] : added) loop->removePort(port, mode);
  }
  Ref<Port> portFor(StringArg mode) {
    auto port = Port::port();
    port->setDelegate(listener);
    add(port, mode);
    return port;
  }
  void add(const Ref<Port>& port, StringArg mode) {
    loop->addPort(port, mode);
    added.emplace_back(port, mode.utf8());
  }
  bool turn(StringArg mode = NSDefaultRunLoopMode) { return loop->runMode(mode, nullptr); }
  std::vector<std::string> heard() { return std::exchange(listener->heard, {}); }

  Ref<RunLoop> loop = RunLoop::currentRunLoop();
  Ref<Listener> listener = make<Listener>();
  std::vector<std::pair<Ref<Port>, std::string>> added;
};

}  // namespace qx::platform_test
