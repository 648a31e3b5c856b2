#pragma once

// A class as an application declares it: the one that most tests of described classes use.

#include <optional>
#include <string>

#include <QXFoundation/class_builder.h>

namespace frame_test {

class Person : public qx::Object {
 public:
  Person() = default;
  Person(std::string n, int a) : name(std::move(n)), age(a) {}

  std::string name;
  int age = 0;
  double score = 0;
  float factor = 1;
  bool active = false;
  unsigned char level = 0;
  std::uint64_t identity = 0;
  qx::Ref<Person> boss;
  qx::PropertyValue tag;
  qx::Ref<qx::String> note;
  std::optional<int> rank;
  const int born = 1970;

  bool adult() const { return age >= 18; }
  std::string greet(const std::string& whom) const { return "hello " + whom + ", " + name; }
  void rename(const std::string& newName) { name = newName; }
  int sum(int a, int b) const noexcept { return a + b; }
  qx::Ref<Person> bossOf(const qx::Ref<Person>& other) const {
    return other == nullptr ? nullptr : other->boss;
  }
  std::optional<int> rankPlus(int n) const {
    return rank ? std::optional<int>(*rank + n) : std::nullopt;
  }
  qx::PropertyValue echo(qx::PropertyValue v) const { return v; }

  // A getter and a setter.
  double height() const { return heightInMetres_; }
  void setHeight(double h) {
    if (h < 0) throw qx::InvalidArgumentException("a height is not negative");
    heightInMetres_ = h;
  }
  // A getter, with a setter declared as an operation.
  const std::string& nickname() const { return nickname_; }
  void setNickname(const std::string& n) { nickname_ = n + "!"; }

  static qx::Ref<Person> fromText(qx::StringArg text) {
    const std::string s = text.utf8();
    return s.empty() ? nullptr : qx::make<Person>(s, 0);
  }

 protected:
  double heightInMetres_ = 0;
  std::string nickname_;
};

inline void describe(qx::ClassBuilder<Person>& c) {
  c.name("FrameTestPerson");
  c.property("name", &Person::name).property("age", &Person::age).property("score", &Person::score);
  c.property("factor", &Person::factor).property("active", &Person::active);
  c.property("level", &Person::level).property("identity", &Person::identity);
  c.property("boss", &Person::boss).property("tag", &Person::tag).property("note", &Person::note);
  c.property("rank", &Person::rank).property("born", &Person::born);
  c.property("adult", &Person::adult);
  c.property("height", &Person::height, &Person::setHeight);
  c.property("nickname", &Person::nickname).operation("setNickname:", &Person::setNickname);
  c.operation("greet:", &Person::greet).operation("rename:", &Person::rename);
  c.operation("sum:with:", &Person::sum).operation("bossOf:", &Person::bossOf);
  c.operation("rankPlus:", &Person::rankPlus).operation("echo:", &Person::echo);
  c.initialisedFromText<&Person::fromText>();
}

}  // namespace frame_test
