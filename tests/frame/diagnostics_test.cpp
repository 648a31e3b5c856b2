#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include <QXFoundation/QXFoundation.h>

#include "frame/diagnostic_operations.h"

namespace diagnostics {

class Foo : public qx::Object {
 public:
  qx::Ref<qx::String> here() const { return QX_DEBUG_METHOD_MSG(this, "here", "hi"); }
  [[noreturn]] void draw() const { qx::subclassResponsibility(this, "draw"); }
  [[noreturn]] void move(int) { qx::notImplemented(this, "move:"); }
};
void describe(qx::ClassBuilder<Foo>& c) { c.name("Foo"); }

// A process with these arguments, that counts how often it is asked for them.
class Process : public qx::ProcessInfo {
 public:
  explicit Process(qx::Ref<qx::Array> a) : given(std::move(a)) {}
  qx::Ref<qx::Array> arguments() const override {
    ++asked;
    return given;
  }
  qx::Ref<qx::Array> given;
  mutable int asked = 0;
};
void describe(qx::ClassBuilder<Process>& c) {
  c.name("DiagnosticsProcess").inherits<qx::ProcessInfo>();
}

}  // namespace diagnostics

namespace {

using diagnostics::Foo;
using diagnostics::Process;
using qx::PropertyValue;

std::string reasonOf(const std::function<void()>& raise) {
  try {
    raise();
  } catch (const qx::GenericException& e) {
    EXPECT_STREQ(e.name(), "NSGenericException");
    return e.reason();
  }
  return "nothing was raised";
}

TEST(Diagnostics, InstancesAreWhatIsNeitherNilNorAClass) {
  EXPECT_FALSE(qx::QXObjCIsInstance(nullptr));
  EXPECT_FALSE(qx::QXObjCIsInstance(qx::classOf<Foo>()));
  EXPECT_FALSE(qx::QXObjCIsInstance(qx::classOf<qx::String>()));
  for (const PropertyValue& v :
       {PropertyValue(qx::make<Foo>()), PropertyValue(qx::null), PropertyValue(1),
        PropertyValue(false), PropertyValue(""), PropertyValue(1.5)}) {
    EXPECT_TRUE(qx::QXObjCIsInstance(v));
  }
}

TEST(Diagnostics, FunctionMessagesSayWhereTheyComeFrom) {
  EXPECT_EQ(qx::QXDebugFunctionMsg("main", "engine", 3, "ok")->utf8(),
            "File engine: 3. In main ok");
  EXPECT_EQ(qx::QXDebugFunctionMsg("größe", "datei", -1, "ü%@%s")->utf8(),
            "File datei: -1. In größe ü%@%s");
  EXPECT_EQ(qx::QXDebugFunctionMsg(nullptr, nullptr, 0, nullptr)->utf8(),
            "File (null): 0. In (null) (null)");
}

TEST(Diagnostics, MethodMessagesTellInstancesFromClasses) {
  const auto foo = qx::make<Foo>();
  EXPECT_EQ(qx::QXDebugMethodMsg(foo, "bar:", "engine", 12, "hi")->utf8(),
            "File engine: 12. In [Foo -bar:] hi");
  EXPECT_EQ(qx::QXDebugMethodMsg(qx::classOf<Foo>(), "bar:", "engine", 12, "hi")->utf8(),
            "File engine: 12. In [Foo +bar:] hi");
  EXPECT_EQ(qx::QXDebugMethodMsg(nullptr, "bar:", "engine", 12, "hi")->utf8(),
            "File engine: 12. In [(null) +bar:] hi");
  EXPECT_EQ(qx::QXDebugMethodMsg(foo, qx::Selector(), "engine", 12, nullptr)->utf8(),
            "File engine: 12. In [Foo -(null)] (null)");
  EXPECT_EQ(qx::QXDebugMethodMsg(1, "bar:", "engine", 12, "hi")->utf8(),
            "File engine: 12. In [NSNumber -bar:] hi");
}

TEST(Diagnostics, MessagesKeepWhatUtf8DoesNotHold) {
  const auto lone = qx::String::fromUtf16(u"\xD800");
  const auto message = qx::QXDebugFunctionMsg("f", "e", 1, lone);
  EXPECT_EQ(message->characterAtIndex(message->length() - 1), 0xD800);
}

TEST(Diagnostics, TheMacrosPassThePlace) {
  const int line = __LINE__ + 1;
  const auto message = QX_DEBUG_FUNCTION_MSG("hi");
  EXPECT_EQ(message->utf8(), "File " __FILE__ ": " + std::to_string(line) + ". In TestBody hi");
  EXPECT_NE(qx::make<Foo>()->here()->utf8().find(". In [Foo -here] hi"), std::string::npos);
}

TEST(Diagnostics, NotImplementedNamesSelectorClassAndKind) {
  const auto foo = qx::make<Foo>();
  EXPECT_EQ(reasonOf([&] { qx::notImplemented(foo, qx::Selector()); }),
            "method (null) not implemented in Foo (instance)");
  EXPECT_EQ(reasonOf([&] { qx::notImplemented(qx::classOf<Foo>(), "draw"); }),
            "method draw not implemented in Foo (class)");
  EXPECT_EQ(reasonOf([&] { qx::notImplemented(nullptr, "draw"); }),
            "method draw not implemented in (null) (class)");
  EXPECT_EQ(reasonOf([&] { foo->move(1); }), "method move: not implemented in Foo (instance)");
}

TEST(Diagnostics, SubclassResponsibilityNamesClassKindAndSelector) {
  const auto foo = qx::make<Foo>();
  EXPECT_EQ(reasonOf([&] { qx::subclassResponsibility(qx::classOf<Foo>(), "draw"); }),
            "subclass Foo(class) should override draw");
  EXPECT_EQ(reasonOf([&] { qx::subclassResponsibility(foo, qx::Selector()); }),
            "subclass Foo(instance) should override (null)");
  EXPECT_EQ(reasonOf([&] { foo->draw(); }), "subclass Foo(instance) should override draw");
}

TEST(Diagnostics, EveryObjectFailsLoudlyBySelector) {
  EXPECT_EQ(reasonOf([] { qx::performSelector(1, "notImplemented:", "draw"); }),
            "method draw not implemented in NSNumber (instance)");
  EXPECT_EQ(
      reasonOf([] { qx::performSelector(qx::classOf<Foo>(), "subclassResponsibility:", "draw"); }),
      "subclass Foo(class) should override draw");
  EXPECT_EQ(reasonOf([] { qx::performSelector(qx::make<Foo>(), "notImplemented:", nullptr); }),
            "method (null) not implemented in Foo (instance)");
  EXPECT_TRUE(qx::performSelector(nullptr, "notImplemented:", "draw").isNil());
}

PropertyValue switchesOf(const qx::Ref<qx::Array>& arguments) {
  return qx::detail::collectDebugSwitches(*qx::make<Process>(arguments));
}

TEST(DebugSet, HoldsWhatFollowsTheSwitch) {
  const PropertyValue names = switchesOf(
      qx::array("prog", "--QXDebug=alpha", "--QXDebug=beta", "--qxdebug=gamma", "--QXDebug=alpha",
                "-QXDebug=x", " --QXDebug=y", "--QXDebug", "x--QXDebug=z"));
  EXPECT_EQ(names, PropertyValue(qx::Set::from(qx::array("alpha", "beta"))));
}

TEST(DebugSet, DoesNotSplitNames) {
  EXPECT_EQ(switchesOf(qx::array("prog", "--QXDebug=a,b", "--QXDebug= c d", "--QXDebug=e=f")),
            PropertyValue(qx::Set::from(qx::array("a,b", " c d", "e=f"))));
}

TEST(DebugSet, MayHoldTheEmptyName) {
  EXPECT_EQ(switchesOf(qx::array("prog", "--QXDebug=")),
            PropertyValue(qx::Set::from(qx::array(""))));
  EXPECT_EQ(switchesOf(qx::array("prog")), PropertyValue(qx::MutableSet::init()));
  EXPECT_EQ(switchesOf(qx::Array::init()), PropertyValue(qx::MutableSet::init()));
}

TEST(DebugSet, TheFirstArgumentIsOneLikeTheOthers) {
  EXPECT_EQ(switchesOf(qx::array("--QXDebug=program")),
            PropertyValue(qx::Set::from(qx::array("program"))));
}

TEST(DebugSet, EachArgumentIsFetchedAfresh) {
  const auto process = qx::make<Process>(qx::array("prog", "a", "b"));
  (void)qx::detail::collectDebugSwitches(*process);
  EXPECT_EQ(process->asked, 4);
}

// Runs the checks in a process of its own, whose set is not built yet: true when none failed.
bool inFreshProcess(const std::function<void()>& checks) {
  const pid_t child = fork();
  if (child == 0) {
    checks();
    _exit(testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

TEST(DebugSet, IsAskedByName) {
  EXPECT_TRUE(inFreshProcess([] {
    qx::ProcessInfo::setProcessInfo(
        qx::make<Process>(qx::array("prog", "--QXDebug=alpha", "--QXDebug=a,b")));
    EXPECT_TRUE(qx::QXDebugSet("alpha"));
    EXPECT_TRUE(qx::QXDebugSet(qx::String::from("a,b")));
    EXPECT_FALSE(qx::QXDebugSet("a"));
    EXPECT_FALSE(qx::QXDebugSet("Alpha"));
    EXPECT_FALSE(qx::QXDebugSet(""));
    EXPECT_FALSE(qx::QXDebugSet(nullptr));
  }));
}

TEST(DebugSet, IsBuiltOnce) {
  EXPECT_TRUE(inFreshProcess([] {
    const auto first = qx::make<Process>(qx::array("prog", "--QXDebug=first"));
    const auto set = debugSet(first);
    EXPECT_TRUE(set->containsObject("first"));
    const auto second = qx::make<Process>(qx::array("prog", "--QXDebug=second"));
    qx::ProcessInfo::setProcessInfo(second);
    EXPECT_EQ(debugSet(second).get(), set.get());
    EXPECT_TRUE(qx::QXDebugSet("first"));
    EXPECT_FALSE(qx::QXDebugSet("second"));
    EXPECT_EQ(second->asked, 0);
    EXPECT_EQ(qx::performSelector(second, "debugSet").object(), set.get());
    set->addObject("later");
    EXPECT_TRUE(qx::QXDebugSet("later"));
  }));
}

TEST(DebugSet, ANameThatIsAskedForFirstIsNil) {
  EXPECT_TRUE(inFreshProcess([] {
    qx::ProcessInfo::setProcessInfo(qx::make<Process>(qx::array("prog", "--QXDebug=")));
    EXPECT_FALSE(qx::QXDebugSet(nullptr));
    EXPECT_TRUE(qx::QXDebugSet(""));
    EXPECT_TRUE(qx::debugSet(nullptr) == nullptr);
  }));
}

}  // namespace
