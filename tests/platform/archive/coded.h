#pragma once

// Classes of an application that take part in archives, and one that does not.

#include <set>
#include <string>
#include <vector>

#include <QXFoundation/QXFoundation.h>
#include <QXFoundation/archiver.h>

namespace coded {

// A person with a boss, so that cycles can be made.
class Person : public qx::Object {
 public:
  Person() { all().insert(this); }
  static std::set<Person*>& all() {
    static std::set<Person*> people;
    return people;
  }
  // Cuts every person's references, so that cycles end.
  static void letGo() {
    const std::vector<qx::Ref<Person>> people(all().begin(), all().end());
    for (const auto& p : people) {
      p->boss = nullptr;
      p->friends = nullptr;
    }
  }

  std::string name;
  int age = 0;
  qx::Ref<Person> boss;
  qx::Ref<qx::Array> friends;

  void encodeWithCoder(qx::Archiver& a) const {
    a.encodeObject(name);
    a.encodeObject(age);
    a.encodeObject(boss);
    a.encodeObject(friends);
  }
  void decodeWithCoder(qx::Unarchiver& u) {
    name = u.decode<std::string>();
    age = u.decode<int>();
    boss = u.decode<qx::Ref<Person>>();
    friends = u.decode<qx::Ref<qx::Array>>();
  }

 protected:
  ~Person() override { all().erase(this); }
};
inline void describe(qx::ClassBuilder<Person>& c) { c.name("CodedPerson").archived(); }

// Encodes two values, decodes one.
class Greedy : public qx::Object {
 public:
  void encodeWithCoder(qx::Archiver& a) const {
    a.encodeObject(1);
    a.encodeObject(2);
  }
  void decodeWithCoder(qx::Unarchiver& u) { (void)u.decodeObject(); }
};
inline void describe(qx::ClassBuilder<Greedy>& c) { c.name("Greedy").archived(); }

class Plain : public qx::Object {};
inline void describe(qx::ClassBuilder<Plain>& c) { c.name("Plain"); }

}  // namespace coded
