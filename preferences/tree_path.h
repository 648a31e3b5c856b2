#pragma once

// Key paths of a preferences tree: their parts, and the walk along them.
//
// A path is split at every dot, empty components included. A component is a key, and an index where
// it has at least four characters and ends with "]".

#include <cstdint>
#include <string_view>

#include <QXFoundation/preferences_dictionary.h>
#include <QXFoundation/preferences_link.h>
#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>
#include <QXFoundation/string_arg.h>

#include "frame/text_span.h"

namespace qx::detail {

// The index of a component; kNoIndex where it has none. The characters between the brackets weigh,
// from the last to the first, 10 xor their place counted from 0; they need not be digits, and the
// sum wraps at 32 bits. Raises RangeException where a closing bracket has no opening one before it.
std::int32_t indexOfComponent(TextSpan component);
inline constexpr std::int32_t kNoIndex = -1;

// The path without indexes: what observers and notifications go by. Each component is cut at the
// last "[" among the first characters of the whole path, as many as the component has; nil for nil.
Ref<String> standardizedKeyPath(StringArg keyPath);

// The value at the path, borrowed from the tree; null where there is none. Raises where the path
// leads through a value that is no dictionary, or a negative index into an array.
const PropertyValue* valueAtPath(const QXPreferencesDictionary& root, StringArg keyPath);
// The same, and null where the path leads through a value that is no dictionary.
const PropertyValue* reachableValueAtPath(const QXPreferencesDictionary& root, StringArg keyPath);

// The same, with the container that holds the value or would hold it. With `create`, every
// container on the way exists afterwards, and those that were plain are containers of the tree.
struct PathEnd {
  PropertyValue value;
  PropertyValue parent;
};
PathEnd walkPath(const PropertyValue& root, StringArg keyPath, bool create);

// A part of a path as a parameter; borrows from it where that needs no conversion.
class PartText {
 public:
  explicit PartText(TextSpan text);
  operator StringArg() const { return string_ != nullptr ? StringArg(string_) : StringArg(bytes_); }

 private:
  std::string_view bytes_;
  Ref<String> string_;
};

// The end of a way on which a write changes nothing but the last container: every container of it
// is a dictionary of the tree that reports to `link`, and storing it again where it stands would be
// no more than a report. No parent where the way is another one, and has to be walked.
struct TreeEnd {
  QXPreferencesDictionary* parent = nullptr;
  TextSpan key;                    // borrowed from the path
  std::uint32_t hash = 0;          // of the key
  PropertyValue* found = nullptr;  // what stands under the key, in the parent
};
TreeEnd endWithinTree(QXPreferencesDictionary& root, const PreferencesLink& link,
                      StringArg keyPath);

// Stores the value under the key; with an index, at that place of the parent: behind its last
// element, in the place of one, or nowhere where the index lies beyond. A parent that is no
// container of that kind raises.
void setInParent(const PropertyValue& parent, const PropertyValue& value, StringArg key,
                 std::int32_t index);

// The value as a dictionary that can be changed; any other raises, as lacking the operation.
MutableDictionary& changeableDictionary(const PropertyValue& value, Selector operation);

// The names that a write goes by: those of the value in its parent, and of its entry in the root.
struct WrittenNames {
  Ref<String> leaf;
  Ref<String> top;
  // The two are one text: the path has no dot, or both are nil.
  bool areOne;
};
WrittenNames namesOfWrite(StringArg keyPath, bool hasPath);

}  // namespace qx::detail
