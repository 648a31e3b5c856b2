#include <cstdio>

#include <QXFoundation/QXFoundation.h>

int main() {
  auto people = qx::array(qx::dict({{"name", "Jim"}, {"age", 30}, {"city", "Oslo"}}),
                          qx::dict({{"name", "Joan"}, {"age", 19}, {"city", "Rome"}}),
                          qx::dict({{"name", "Bob"}, {"age", 50}, {"city", "Oslo"}}));
  auto adults = qx::qualifierWithQualifierFormat("age > %d and name like %@", 21, "J*");
  auto found = filteredArrayUsingQualifier(people, adults);
  for (const qx::PropertyValue& person : *found)
    std::puts(person["name"].description().c_str());  // Jim
}
