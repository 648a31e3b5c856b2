// A program outside the source tree, as a user of the installed library writes it.

#include <cstdio>

#include <QXFoundation/QXFoundation.h>

namespace {

class Person : public qx::Object {
 public:
  Person(std::string n, int a) : name(std::move(n)), age(a) {}
  std::string name;
  int age;
};

void describe(qx::ClassBuilder<Person>& c) {
  c.name("Person").property("name", &Person::name).property("age", &Person::age);
}

}  // namespace

int main() {
  const auto people =
      qx::array(qx::make<Person>("Ann", 17), qx::make<Person>("Jim", 30),
                qx::dict({{"name", "Joe"}, {"age", 42}}), qx::dict({{"name", "Bob"}, {"age", 50}}));
  const auto adults = qx::qualifierWithQualifierFormat("age > %d and name like %@", 21, "J*");
  const auto hits = filteredArrayUsingQualifier(people, adults);
  for (const qx::PropertyValue& p : *hits) std::puts(p["name"].description().c_str());
  const bool archives = qx::Unarchiver::unarchiveObjectWithData(
                            qx::Archiver::archivedDataWithRootObject("text")) == "text";
  return hits->count() == 2 && archives ? 0 : 1;
}
