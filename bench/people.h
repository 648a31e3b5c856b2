#pragma once

// The records that sorting is measured on, as structs, as objects of an application's class and as
// dictionaries. All are made from one seed.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <unordered_set>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace bench {

struct Person {
  std::string name;  // 8 to 20 letters
  std::int64_t number = 0;
  std::string city;
  double score = 0;
  std::vector<std::string> tags;
};

class PersonObject : public qx::Object {
 public:
  explicit PersonObject(const Person& p)
      : name(p.name), number(p.number), city(p.city), score(p.score), tags(p.tags) {}
  std::string name;
  std::int64_t number;
  std::string city;
  double score;
  std::vector<std::string> tags;
};

inline void describe(qx::ClassBuilder<PersonObject>& c) {
  c.name("BenchPerson")
      .property("name", &PersonObject::name)
      .property("number", &PersonObject::number);
  c.property("city", &PersonObject::city).property("score", &PersonObject::score);
}

inline std::string randomName(std::mt19937_64& random) {
  std::string name(8 + random() % 13, ' ');
  for (char& c : name) c = static_cast<char>('a' + random() % 26);
  name[0] = static_cast<char>(name[0] - 32);
  return name;
}

// Numbers and names take `distinct` values each, in an order of their own.
inline std::vector<Person> people(std::size_t count, std::size_t distinct) {
  std::mt19937_64 random(20240229);
  std::unordered_set<std::string> known;
  std::vector<std::string> names;
  while (names.size() < distinct) {
    std::string name = randomName(random);
    if (known.insert(name).second) names.push_back(std::move(name));
  }
  std::vector<std::size_t> order(count);
  for (std::size_t i = 0; i < count; ++i) order[i] = i % distinct;
  std::shuffle(order.begin(), order.end(), random);
  std::vector<Person> made(count);
  for (std::size_t i = 0; i < count; ++i) {
    made[i].number = static_cast<std::int64_t>(order[i]);
    made[i].name = names[order[i]];
    made[i].city = names[order[i] % 20];
    made[i].score = static_cast<double>(random() % 1000000) / 1000;
    made[i].tags = {"a", "b"};
  }
  return made;
}

inline qx::Ref<qx::MutableArray> dictionaries(const std::vector<Person>& people) {
  auto made = qx::MutableArray::arrayWithCapacity(people.size());
  for (const Person& p : people) {
    made->addObject(qx::dict({{"name", p.name},
                              {"number", p.number},
                              {"city", p.city},
                              {"score", p.score},
                              {"tags", qx::array(p.tags[0], p.tags[1])}}));
  }
  return made;
}

inline qx::Ref<qx::MutableArray> objects(const std::vector<Person>& people) {
  auto made = qx::MutableArray::arrayWithCapacity(people.size());
  for (const Person& p : people) made->addObject(qx::make<PersonObject>(p));
  return made;
}

inline std::vector<std::shared_ptr<const Person>> pointers(const std::vector<Person>& people) {
  std::vector<std::shared_ptr<const Person>> made;
  for (const Person& p : people) made.push_back(std::make_shared<const Person>(p));
  return made;
}

}  // namespace bench
