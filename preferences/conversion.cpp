// Plain containers become containers of a tree, at every depth.

#include <unordered_set>
#include <vector>

#include "frame/dictionary_storage.h"
#include "frame/raise.h"
#include "preferences/containers.h"
#include "preferences/store_access.h"

namespace qx::detail {
namespace {

// One container on its way: its source, and the copy that grows. The source is a snapshot, as
// reports may run code of the application.
class Conversion {
 public:
  Conversion(const PropertyValue& source, const PreferencesLink& link, ContainerModels models)
      : source_(source) {
    if (const auto* d = source.isDictionary() ? source.peek<Dictionary>() : nullptr) {
      entries_ = DictionaryStorage::isMutable(*d) ? DictionaryStorage::immutableCopy(*d)
                                                  : const_cast<Dictionary*>(d);
      slot_ = entries_->begin();
      dictionary_ = models.dictionary != nullptr ? models.dictionary->emptyInstance()
                                                 : QXPreferencesDictionary::init();
      PreferencesAccess::setLink(*dictionary_, link);
      fillQuickly(link);
    } else {
      const auto* a = source.peek<Array>();
      elements_.assign(a->begin(), a->end());
      array_ = models.array != nullptr ? models.array->emptyInstance() : QXPreferencesArray::init();
      PreferencesAccess::setLink(*array_, link);
    }
  }

  const Object* source() const { return source_.object(); }
  // Which classes the containers within get.
  ContainerModels models() const { return {dictionary_.get(), array_.get()}; }

  bool isAtEnd() const {
    return dictionary_ != nullptr ? *slot_ == entries_->end() : next_ == elements_.size();
  }
  PropertyValue next() const { return dictionary_ != nullptr ? (**slot_).value : elements_[next_]; }
  // What stands for `next()` in the copy.
  void take(PropertyValue value) {
    if (dictionary_ != nullptr) {
      if (!isFilled_) {
        dictionary_->setObject(value, (**slot_).key);
      } else if (isContainer(value)) {
        repoint(value, PreferencesAccess::link(*dictionary_));
        DictionaryStorage::set(*dictionary_, value, (**slot_).key);
      }
      ++*slot_;
    } else {
      elements_[next_++] = std::move(value);
    }
  }
  PropertyValue finish() {
    if (dictionary_ != nullptr) return dictionary_;
    array_->addObjectsFromArray(Array::from(elements_.data(), elements_.size()));
    return array_;
  }

 private:
  // Takes over all entries at once where storing them one by one would come to the same: the
  // containers among them are replaced when their turn comes.
  void fillQuickly(const PreferencesLink& link) {
    QXPreferences* store = link.store();
    isFilled_ = ownTreeDictionary(dictionary_) != nullptr && dictionary_->count() == 0 &&
                (store == nullptr || PreferencesAccess::onlyMarks(*store));
    if (!isFilled_) return;
    DictionaryStorage::fill(*dictionary_, *entries_);
    if (store != nullptr && entries_->count() > 0) PreferencesAccess::mark(*store);
  }

  PropertyValue source_;
  Ref<QXPreferencesDictionary> dictionary_;
  bool isFilled_ = false;
  Ref<Dictionary> entries_;
  std::optional<Dictionary::Iterator> slot_;
  Ref<QXPreferencesArray> array_;
  std::vector<PropertyValue> elements_;
  std::size_t next_ = 0;
};

// Conversions nested in one another. Those beyond the first few hundred are watched for a source
// that stands within itself.
class Nesting {
 public:
  bool isEmpty() const { return open_.empty(); }
  Conversion& innermost() { return open_.back(); }

  void enter(const PropertyValue& source, const PreferencesLink& link, ContainerModels models) {
    if (open_.size() >= kUnwatched && !watched_.insert(source.object()).second) {
      raiseInvalidArgument("a container that holds itself can not stand in preferences");
    }
    open_.emplace_back(source, link, models);
  }

  PropertyValue leave() {
    if (open_.size() > kUnwatched) watched_.erase(open_.back().source());
    PropertyValue result = open_.back().finish();
    open_.pop_back();
    return result;
  }

 private:
  static constexpr std::size_t kUnwatched = 500;
  std::vector<Conversion> open_;
  std::unordered_set<const Object*> watched_;
};

}  // namespace

PropertyValue converted(const PropertyValue& value, const PreferencesLink& link,
                        ContainerModels models) {
  if (!isPlainContainer(value)) {
    repoint(value, link);
    return value;
  }
  const PreferencesLink held = link;
  const SyncScope scope(held.store());
  Nesting nesting;
  nesting.enter(value, held, models);
  for (;;) {
    Conversion& at = nesting.innermost();
    if (at.isAtEnd()) {
      PropertyValue done = nesting.leave();
      if (nesting.isEmpty()) return done;
      nesting.innermost().take(std::move(done));
    } else if (const PropertyValue next = at.next(); isPlainContainer(next)) {
      nesting.enter(next, held, at.models());
    } else {
      at.take(next);
    }
  }
}

}  // namespace qx::detail
