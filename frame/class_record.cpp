#include "frame/class_record.h"

#include <algorithm>
#include <bit>

#include "frame/composition.h"
#include "frame/key_text.h"
#include "frame/raise.h"
#include "frame/unicode.h"

namespace qx::detail {

void FrozenIndex::build(const std::vector<std::uint32_t>& hashes) {
  slots_.assign(hashes.empty() ? 0 : std::bit_ceil(hashes.size() * 2), 0);
  const std::size_t mask = slots_.size() - 1;
  for (std::size_t i = 0; i < hashes.size(); ++i) {
    std::size_t at = hashes[i] & mask;
    while (slots_[at] != 0) at = (at + 1) & mask;
    slots_[at] = static_cast<std::uint32_t>(i + 1);
  }
}

namespace {

// Later declarations replace earlier ones of the same name; inherited ones come after the own.
template <class T, class Same>
void complete(std::vector<T>& own, const std::vector<T>* inherited, Same same) {
  std::vector<T> all;
  auto add = [&](const T& item, bool replace) {
    const auto at = std::find_if(all.begin(), all.end(), [&](const T& x) { return same(x, item); });
    if (at == all.end()) {
      all.push_back(item);
    } else if (replace) {
      *at = item;
    }
  };
  for (const T& item : own) add(item, true);
  if (inherited != nullptr) {
    for (const T& item : *inherited) add(item, false);
  }
  own = std::move(all);
}

std::uint16_t declaredComparisons(const std::vector<Operation>& operations) {
  std::uint16_t bits = 0;
  for (const Operation& o : operations) {
    const Comparison c = comparisonOf(o.selector);
    if (c != Comparison::none)
      bits = static_cast<std::uint16_t>(bits | 1U << static_cast<unsigned>(c));
    if (o.selector == Selector("compare:")) bits |= ClassRecord::kComparesItself;
  }
  return bits;
}

std::vector<std::uint32_t> selectorHashes(const std::vector<Operation>& operations) {
  std::vector<std::uint32_t> hashes;
  for (const Operation& o : operations) hashes.push_back(o.selector.hash());
  return hashes;
}

const Operation* findIn(const std::vector<Operation>& operations, const FrozenIndex& index,
                        Selector s) {
  if (s.isNull()) return nullptr;
  const std::size_t at =
      index.find(s.hash(), [&](std::size_t i) { return operations[i].selector == s; });
  return at == FrozenIndex::kAbsent ? nullptr : &operations[at];
}

// Receives the composition's additions.
class Adder : public ClassBuilderBase {
 public:
  explicit Adder(ClassRecord& record) : ClassBuilderBase(record) {}
};

}  // namespace

void ClassRecord::seal() {
  const ClassRecord* base = super == nullptr ? nullptr : &super->record();
  if (!core) ownComparisons = declaredComparisons(operations);
  if (ofLibrary) {
    Adder adder(*this);
    for (const AddedOperations& added : addedOperations()) {
      if (std::string_view(added.className) == name) added.add(adder);
    }
  }
  if (base != nullptr) {
    ownComparisons |= base->ownComparisons;
    lineage = base->lineage;
  }
  lineage.push_back(this);
  inheritFrom(base);
  indexNames();
}

void ClassRecord::inheritFrom(const ClassRecord* base) {
  const auto sameName = [](const Property& a, const Property& b) { return a.name == b.name; };
  const auto sameSelector = [](const Operation& a, const Operation& b) {
    return a.selector == b.selector;
  };
  const auto sameProtocol = [](const ProtocolConformance& a, const ProtocolConformance& b) {
    return a.protocol == b.protocol;
  };
  complete(properties, base == nullptr ? nullptr : &base->properties, sameName);
  complete(operations, base == nullptr ? nullptr : &base->operations, sameSelector);
  complete(classOperations, base == nullptr ? nullptr : &base->classOperations, sameSelector);
  complete(protocols, base == nullptr ? nullptr : &base->protocols, sameProtocol);
}

void ClassRecord::indexNames() {
  std::vector<std::uint32_t> keyHashes;
  for (const Property& p : properties) {
    propertyKeys_.push_back(
        std::make_unique<KeyText>(p.name));  // borrows the name, which lives for ever
    keyHashes.push_back(propertyKeys_.back()->hash);
  }
  propertyIndex_.build(keyHashes);
  operationIndex_.build(selectorHashes(operations));
  classOperationIndex_.build(selectorHashes(classOperations));
  for (Property& p : properties) {
    p.setter = p.set == nullptr ? findOperation(setterSelector(p.name)) : nullptr;
  }
}

const Property* ClassRecord::findProperty(const KeyText& key) const {
  const std::size_t at = propertyIndex_.find(key.hash, [&](std::size_t i) {
    return propertyKeys_[i]->hash == key.hash && equalUnits(propertyKeys_[i]->span, key.span);
  });
  return at == FrozenIndex::kAbsent ? nullptr : &properties[at];
}

const Operation* ClassRecord::findOperation(Selector selector) const {
  return findIn(operations, operationIndex_, selector);
}

const Operation* ClassRecord::findClassOperation(Selector selector) const {
  return findIn(classOperations, classOperationIndex_, selector);
}

Selector setterSelector(std::string_view property) {
  std::string name(property);
  if (!name.empty()) name[0] = static_cast<char>(asciiUpper(static_cast<unsigned char>(name[0])));
  return Selector::named("set" + name + ":");
}

void raiseVirtualOperation(Selector name) {
  raiseInvalidArgument("ClassBuilder::operation: " + std::string(name.text()) +
                       " is a virtual function of Object, which is to be overridden instead");
}

void ClassBuilderBase::addOperation(const Operation& operation) {
  record_.operations.push_back(operation);
}
void ClassBuilderBase::addClassOperation(const Operation& operation) {
  record_.classOperations.push_back(operation);
}
void ClassBuilderBase::addProperty(const Property& property) {
  record_.properties.push_back(property);
}
void ClassBuilderBase::setName(const char* name) { record_.name = name; }
void ClassBuilderBase::setSuper(const Class& super) { record_.super = &super; }
void ClassBuilderBase::addProtocol(const Protocol& protocol, void* (*cast)(Object&)) {
  record_.protocols.push_back({&protocol, cast});
}
void ClassBuilderBase::setTextInitialiser(PropertyValue (*make)(StringArg)) {
  record_.fromText = make;
}
void ClassBuilderBase::setCoding(void (*encode)(const Object&, Archiver&),
                                 void (*decode)(Object&, Unarchiver&), Ref<Object> (*makeEmpty)()) {
  record_.encode = encode;
  record_.decode = decode;
  record_.makeEmpty = makeEmpty;
}
void ClassBuilderBase::setCore() { record_.core = true; }

}  // namespace qx::detail
