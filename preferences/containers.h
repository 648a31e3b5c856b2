#pragma once

// What the two containers of a preferences tree share: telling them from plain ones, and
// conversion.

#include <QXFoundation/preferences_array.h>
#include <QXFoundation/preferences_dictionary.h>
#include <QXFoundation/selector.h>

namespace qx::detail {

// The value as a container of a tree, borrowed; null for everything else.
QXPreferencesArray* treeArray(const PropertyValue& value);
QXPreferencesDictionary* treeDictionary(const PropertyValue& value);
// The value as a dictionary of the library's own class, whose operations are those of this library;
// null for everything else.
QXPreferencesDictionary* ownTreeDictionary(const PropertyValue& value);
// An array or dictionary of any kind: what conversion may change.
inline bool isContainer(const PropertyValue& value) {
  return value.isArray() || value.isDictionary();
}
// An array or dictionary that is none.
bool isPlainContainer(const PropertyValue& value);
// The reference to its store of a container of a tree; null for everything else.
const PreferencesLink* linkOf(const PropertyValue& value);

// Changes where a container of a tree reports to; does nothing with other values.
void repoint(const PropertyValue& value, const PreferencesLink& link);

// Whose class new containers get: that of the model, the library's own where there is none.
struct ContainerModels {
  const QXPreferencesDictionary* dictionary = nullptr;
  const QXPreferencesArray* array = nullptr;
};

// What is to be stored for a value in a container that reports to `link`: a new container of a tree
// for a plain one, the same at every depth within; a container of a tree itself, repointed; any
// other value as it is. A container within itself raises InvalidArgumentException. Works without
// nesting on the stack.
PropertyValue converted(const PropertyValue& value, const PreferencesLink& link,
                        ContainerModels models);

// A new empty instance of a class performing a class operation: QXPreferencesArray,
// QXPreferencesDictionary, or a subclass of one that is declared with `archived()`, and can
// therefore be made without knowing its type. Any other raises InvalidArgumentException.
PropertyValue emptyOfClass(const PropertyValue& receivingClass, Selector operation);

// Whether an equal value stands in the container or, through containers of a tree, at any depth
// below it.
bool containsDeeply(const PropertyValue& container, const PropertyValue& value);

}  // namespace qx::detail
