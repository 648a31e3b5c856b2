// sort, sort_assume, sort_orderings, compare, insert_function, insert_integers, insert_descriptors,
// compare_descriptors, insert_key_order

#include <utility>
#include <vector>

#include "tests/vector_check/driver.h"

namespace vector_check {

using namespace qx;

namespace {

constexpr char kKey[] = "key";

Selector selectorOf(const json& args) {
  return Selector::named(args.at("selector").get<std::string>());
}

Ref<QXSortOrdering> ordering(StringArg key, Selector selector) {
  return QXSortOrdering::sortOrderingWithKey(key, selector);
}

Ref<MutableArray> arrayOf(const std::vector<PropertyValue>& values) {
  return MutableArray::from(values.data(), values.size());
}

// The place in `before` of each element of `after`.
json placesIn(const std::vector<PropertyValue>& before, const Array& after) {
  json places = json::array();
  for (const PropertyValue& v : after) {
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (qx::isSame(before[i], v)) places.push_back(i);
    }
  }
  return places;
}

// Each object is told from the others by its place.
Outcome sort(const json& args, const json& expect) {
  std::vector<PropertyValue> objects;
  for (const json& slot : args.at("values")) {
    const auto object = MutableDictionary::init();
    object->setValueForKey(slotValue(slot), kKey);
    objects.push_back(object);
  }
  const auto array = arrayOf(objects);
  const auto first = args.value("first", std::size_t{0});
  const auto count = args.value("count", objects.size());
  _sortUsingKeyOrder(array, ordering(kKey, selectorOf(args)), first, count);
  return compare(expect, {{"perm", placesIn(objects, *array)}});
}

Outcome sortOrderings(const json& args, const json& expect) {
  std::vector<PropertyValue> objects;
  for (const json& o : args.at("objects")) objects.push_back(plainValue(o).mutableCopy());
  const auto orderings = MutableArray::init();
  for (const json& o : args.at("orderings")) {
    orderings->addObject(
        ordering(o.at(0).get<std::string>(), Selector::named(o.at(1).get<std::string>())));
  }
  const auto array = arrayOf(objects);
  if (args.value("copy", false)) {
    return compare(expect,
                   {{"result", plainJson(sortedArrayUsingKeyOrderArray(array, orderings))}});
  }
  sortUsingKeyOrderArray(array, orderings);
  return compare(expect, {{"perm", placesIn(objects, *array)}});
}

Outcome compareValues(const json& args, const json& expect) {
  const PropertyValue left = slotValue(args.at("left"));
  const PropertyValue right = slotValue(args.at("right"));
  const PropertyValue result = performSelector(left, SelectorFor<1>(selectorOf(args)), right);
  return compare(expect, {{"result", result.integerValue()}});
}

// The numbers 0, 1, ... as elements.
Ref<MutableArray> numbered(std::size_t count) {
  const auto array = MutableArray::init();
  for (std::size_t i = 0; i < count; ++i) array->addObject(i);
  return array;
}

constexpr char kInserted[] = "the object";

Outcome placeOf(const Array& array, const json& asked, const json& expect) {
  return compare(expect, {{"index", array.indexOfObject(kInserted)}, {"probes", asked}});
}

Outcome insertFunction(const json& args, const json& expect) {
  const json& returns = args.at("returns");
  const auto array = numbered(returns.size());
  json asked = json::array();
  insertObjectInSortedArray(
      array, kInserted,
      [&](const PropertyValue&, const PropertyValue& element, json& places) {
        places.push_back(element.integerValue());
        return returns.at(element.unsignedIntegerValue()).get<int>();
      },
      asked);
  return placeOf(*array, asked, expect);
}

// Keeps the place of the last insertion.
class PlaceKeepingArray : public MutableArray {
 public:
  void addObject(const PropertyValue& value) override {
    place = count();
    MutableArray::addObject(value);
  }
  void insertObject(const PropertyValue& value, std::size_t atIndex) override {
    place = atIndex;
    MutableArray::insertObject(value, atIndex);
  }
  std::size_t place = 0;
};
void describe(ClassBuilder<PlaceKeepingArray>& c) {
  c.name("PlaceKeepingArray").inherits<MutableArray>();
}

Outcome insertIntegers(const json& args, const json& expect) {
  const auto array = make<PlaceKeepingArray>();
  array->addObjectsFromArray(plainValue(args.at("array")).as<Array>());
  insertObjectInSortedArray(
      array, plainValue(args.at("object")),
      [](const PropertyValue& a, const PropertyValue& b, std::nullptr_t) { return a.compare(b); },
      nullptr);
  return compare(expect, {{"index", array->place}, {"array", plainJson(array)}});
}

// Answers from a row of a table, by element.
class TableDescriptor : public SortDescriptor {
 public:
  explicit TableDescriptor(json answers) : answers_(std::move(answers)) {}
  int compareObject(const PropertyValue&, const PropertyValue& toObject) const override {
    return answers_.at(toObject.unsignedIntegerValue()).get<int>();
  }

 private:
  json answers_;
};
void describe(ClassBuilder<TableDescriptor>& c) {
  c.name("TableDescriptor").inherits<SortDescriptor>();
}

// Decides nothing, and writes down which elements it is asked about.
class WitnessDescriptor : public SortDescriptor {
 public:
  explicit WitnessDescriptor(json& asked) : asked_(asked) {}
  int compareObject(const PropertyValue&, const PropertyValue& toObject) const override {
    asked_.push_back(toObject.unsignedIntegerValue());
    return 0;
  }

 private:
  json& asked_;
};
void describe(ClassBuilder<WitnessDescriptor>& c) {
  c.name("WitnessDescriptor").inherits<SortDescriptor>();
}

Outcome insertDescriptors(const json& args, const json& expect) {
  json asked = json::array();
  const auto descriptors = MutableArray::init();
  descriptors->addObject(make<WitnessDescriptor>(asked));
  for (const json& row : args.at("table")) descriptors->addObject(make<TableDescriptor>(row));
  const auto array = numbered(args.at("n").get<std::size_t>());
  insertObjectInSortedArray(array, kInserted, descriptors);
  return placeOf(*array, asked, expect);
}

Outcome compareDescriptors(const json& args, const json& expect) {
  const auto descriptors = MutableArray::init();
  for (const json& result : args.at("results")) {
    descriptors->addObject(make<TableDescriptor>(json::array({result})));
  }
  return compare(expect, {{"result", compareWithSortDescriptors(0, 0, descriptors)}});
}

// Answers a slot's value, and writes down when it is asked for it.
class AskedElement : public Object {
 public:
  AskedElement(PropertyValue value, std::size_t place, json* asked)
      : value_(std::move(value)), place_(place), asked_(asked) {}
  PropertyValue key() const {
    if (asked_ != nullptr) asked_->push_back(place_);
    return value_;
  }

 private:
  PropertyValue value_;
  std::size_t place_;
  json* asked_;
};
void describe(ClassBuilder<AskedElement>& c) {
  c.name("AskedElement").property(kKey, &AskedElement::key);
}

Outcome insertKeyOrder(const json& args, const json& expect) {
  json asked = json::array();
  const auto array = MutableArray::init();
  for (const json& slot : args.at("values")) {
    array->addObject(make<AskedElement>(slotValue(slot), array->count(), &asked));
  }
  const PropertyValue object = make<AskedElement>(slotValue(args.at("object")), 0U, nullptr);
  insertObjectInSortedArray(array, object, ordering(kKey, selectorOf(args)));
  return compare(expect, {{"index", array->indexOfObjectIdenticalTo(object)}, {"probes", asked}});
}

}  // namespace

void addOrderingOperations(Operations& operations) {
  operations["sort"] = sort;
  operations["sort_assume"] = sort;
  operations["sort_orderings"] = sortOrderings;
  operations["compare"] = compareValues;
  operations["insert_function"] = insertFunction;
  operations["insert_integers"] = insertIntegers;
  operations["insert_descriptors"] = insertDescriptors;
  operations["compare_descriptors"] = compareDescriptors;
  operations["insert_key_order"] = insertKeyOrder;
}

}  // namespace vector_check
