// Qualifiers, orderings, property lists, archives, values and collections, and the same when memory
// runs out.

#include <algorithm>
#include <new>

#include <QXFoundation/QXFoundation.h>

#include "tests/soak/soak.h"

namespace soak {
namespace {

struct Person {
  std::string name;
  int age = 0;
};
void describe(qx::ClassBuilder<Person>& c) {
  c.name("SoakPerson").property("name", &Person::name).property("age", &Person::age);
}

class Employee : public qx::Object {
 public:
  std::string name;
  qx::Ref<Employee> boss;
  void encodeWithCoder(qx::Archiver& a) const {
    a.encodeObject(name);
    a.encodeObject(boss);
  }
  void decodeWithCoder(qx::Unarchiver& u) {
    name = u.decode<std::string>();
    boss = u.decode<qx::Ref<Employee>>();
  }
};
void describe(qx::ClassBuilder<Employee>& c) {
  c.name("SoakEmployee").property("name", &Employee::name).archived();
}

int ageOf(int i) { return i * 7 % 90; }

qx::Ref<qx::MutableArray> people(int count) {
  auto list = qx::MutableArray::init();
  for (int i = 0; i < count; ++i) {
    list->addObject(qx::dict({{"name", (i % 3 == 0 ? "J" : "M") + std::to_string(i)},
                              {"age", ageOf(i)},
                              {"tags", qx::array("a", i, 0.5 * i)}}));
  }
  return list;
}

// One array that all threads read.
const qx::Ref<qx::Array>& sharedPeople() {
  static const auto* list =
      new qx::Ref<qx::Array>(qx::PropertyValue(people(500)).copy().as<qx::Array>());
  return *list;
}

void select(Ground&, std::mt19937& random) {
  const int least = static_cast<int>(random() % 90);
  std::size_t wanted = 0;
  for (int i = 0; i < 500; i += 3) wanted += ageOf(i) > least ? 1 : 0;
  const auto parsed = qx::qualifierWithQualifierFormat("age > %d and name like %@", least, "J*");
  expect(filteredArrayUsingQualifier(sharedPeople(), parsed)->count() == wanted,
         "a parsed qualifier selects others");
  const auto built = qx::key("age") > least && qx::key("name").like("J*");
  expect(filteredArrayUsingQualifier(sharedPeople(), built)->count() == wanted,
         "a built qualifier selects others");
  const qx::Matching<Person> matching(parsed);
  expect(matching({"Jim", 91}) && !matching({"Jim", least}), "a bound qualifier decides otherwise");
  expect(!explain(parsed, sharedPeople()->objectAtIndex(1)).text().empty(),
         "an explanation is empty");
}

void sort(Ground&, std::mt19937& random) {
  auto list = people(200);
  kwRandomize(list);
  const auto byAge = qx::QXSortOrdering::sortOrderingWithKey("age", "compareAscending:");
  if (random() % 2 == 0) {
    sortUsingKeyOrderArray(list, qx::array(byAge));
  } else {
    sortStablyUsingOrderings(list, qx::array(byAge));
  }
  insertObjectInSortedArray(list, qx::dict({{"age", static_cast<int>(random() % 90)}}), byAge);
  const auto ages = qx::PropertyValue(list)["age"].as<qx::Array>();
  expect(std::is_sorted(ages->begin(), ages->end(),
                        [](const auto& a, const auto& b) { return a.intValue() < b.intValue(); }),
         "a sorted array is in no order");
}

void store(Ground&, std::mt19937& random) {
  using Lists = qx::PropertyListSerialization;
  const qx::PropertyValue list = people(1 + static_cast<int>(random() % 100));
  for (const auto format : {qx::PropertyListFormat::xml, qx::PropertyListFormat::binary}) {
    qx::Ref<qx::Error> error;
    const auto bytes = Lists::dataWithPropertyList(list, format, &error);
    const auto again = Lists::propertyListWithData(
        bytes, qx::PropertyListMutability::mutableContainers, nullptr, &error);
    expect(again == list, "a property list comes back as another");
    // A byte that is wrong is an error or another list, never more.
    std::string damaged(reinterpret_cast<const char*>(bytes->bytes()), bytes->length());
    damaged[random() % damaged.size()] ^= static_cast<char>(1 + random() % 255);
    (void)Lists::propertyListWithData(qx::Data::from(damaged),
                                      qx::PropertyListMutability::immutable, nullptr, &error);
  }
  auto boss = qx::make<Employee>();
  boss->name = "Ann";
  auto employee = qx::make<Employee>();
  employee->name = "Bob";
  employee->boss = boss;
  const auto archive = qx::Archiver::archivedDataWithRootObject(qx::array(employee, boss, list));
  const auto again = qx::Unarchiver::unarchiveObjectWithData(archive).as<qx::Array>();
  expect(isSame(again->objectAtIndex(0).as<Employee>()->boss, again->objectAtIndex(1)),
         "identity was lost");
  expect(again->objectAtIndex(2) == list, "an archive comes back as another");
}

void convert(Ground&, std::mt19937& random) {
  const auto seconds = static_cast<double>(random()) + 0.25;
  const auto date = qx::Date::dateWithTimeIntervalSince1970(seconds);
  expect(qx::qxDateFromRFC3339String(qxRFC3339String(date, 90))->timeIntervalSince1970() == seconds,
         "a date comes back as another");
  expect(qx::qxDateFromISO8601String("2021-07-01T12:00:00") != nullptr, "a local date is none");
  const auto fraction =
      qx::QXFractionNumber::qxFractionNumberWithNumerator(static_cast<std::int64_t>(random()), 720);
  expect(qx::PropertyValue(fraction) == qx::PropertyValue(fraction->doubleValue()),
         "a fraction is no number");
  expect(qx::QXSizeFormatter::stringForByteCount(1500)->utf8() == "1.500 KB",
         "a size has another text");
  const auto cursor = qx::QXDataCursor::initWithData(qx::Data::from("one\r\ntwo\n\nfour"));
  int lines = 0;
  while (cursor->readLine()) ++lines;
  expect(lines == 4, "a text has other lines");
}

void collect(Ground&, std::mt19937&) {
  const auto list = sharedPeople();
  const auto names = qxMap(list, [](const qx::PropertyValue& p) { return p["name"]; });
  expect(subarrayByIntersectingWithArray(names, qx::array("J0", "J3", "x"))->count() == 2,
         "a wrong intersection");
  auto text = qx::String::from(names->description());
  const auto replaced = stringByReplacingAllOccurrencesOfString(text, "J", "\u00fc\u4e00");
  expect(!containsString(replaced, "J"), "something was not replaced");
}

// Not among what runs out of memory: a tree that is not taken apart stays, as its nodes keep each
// other.
void growTree(Ground&, std::mt19937& random) {
  auto root = qx::QXTree::initWithObject("root");
  auto node = root;
  for (unsigned i = 0; i < 1 + random() % 50; ++i) {
    root->addChildItem(static_cast<int>(i));
    node = node->addChildItem("child");
  }
  expect(root->findItem(node->object(), true) != nullptr, "a node is not found");
  root->takeApart();
  auto weak = qx::WeakRef<qx::QXTree>(root);
  root = nullptr;
  node = nullptr;
  expect(weak.lock() == nullptr, "a tree was not freed");
}

// Each of the above with an allocation that fails somewhere in it: what it leaves is whole, and
// nothing is lost.
void runOutOfMemory(Ground& ground, std::mt19937& random) {
  static constexpr void (*kRounds[])(Ground&, std::mt19937&) = {select, sort, store, convert,
                                                                collect};
  const auto round = kRounds[random() % std::size(kRounds)];
  if (!failAllocationAfter(static_cast<long>(random() % 2000))) return;
  try {
    round(ground, random);
  } catch (const std::bad_alloc&) {
  }
  allowAllocations();
}

}  // namespace

std::vector<Work> workOnValues() {
  sharedPeople();
  return {{"select", select},
          {"sort", sort},
          {"store", store},
          {"convert", convert},
          {"collect", collect},
          {"grow a tree", growTree},
          {"run out of memory", runOutOfMemory}};
}

}  // namespace soak
