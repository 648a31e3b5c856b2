// String operations: path tweaks, a strict yes or no, containment tests, replacing everywhere.
//
//     localPath(path);                                             // "/Users/a" gives "Users/a"
//     auto safe = stringByReplacingAllOccurrencesOfString(text, "..", ".");
//     auto name = stringByReplacingCharactersInSet(title, qx::CharacterSet::newlineCharacterSet(),
//     " ");
//
// Ranges and lengths count UTF-16 code units; searching compares code units. All of them can be
// performed by selector too, on strings of any class. A nil string gives nil, 0 or false. A nil
// argument raises InvalidArgumentException where nothing else is said. Arguments may be the string
// itself. Thread-safe, as far as the strings are.
#pragma once

#include <cstdint>

#include <QXFoundation/character_set.h>
#include <QXFoundation/object.h>
#include <QXFoundation/string.h>
#include <QXFoundation/string_arg.h>
#include <QXFoundation/string_search.h>

namespace qx {

// An absolute path (one that begins with "/" or "~") without its first character; any other string
// itself.
QX_EXPORT Ref<String> localPath(In<String> string);

// True for "YES", "Y", "yes" and "y" alone: "Yes", "TRUE" and "1" are false.
QX_EXPORT bool qxBoolValue(In<String> string);

// The string's `intValue`, taken as unsigned: "-1" gives 4294967295.
QX_EXPORT std::uint32_t unsignedIntValue(In<String> string);

// Whether some character of the string is in the set.
QX_EXPORT bool containsCharacterInSet(In<String> string, In<CharacterSet> set);

// Whether `other` stands in the string; true when `other` is nil or empty.
QX_EXPORT bool containsString(In<String> string, StringArg other);
QX_EXPORT bool containsString(In<String> string, StringArg other, StringCompareOptions options);

// An immutable string with every occurrence of the target replaced, from left to right: "aaa" with
// "aa" replaced by "b" is "ba". What was put in is not searched again. An empty target stands
// nowhere. A nil replacement raises only where there is something to replace. Takes time in
// proportion to the texts.
QX_EXPORT Ref<String> stringByReplacingAllOccurrencesOfString(In<String> string, StringArg target,
                                                              StringArg withString);

// A new mutable string in which every character of the set is replaced, each on its own; the very
// string where none occurs.
QX_EXPORT Ref<String> stringByReplacingCharactersInSet(In<String> string, In<CharacterSet> set,
                                                       StringArg withString);

// The same in place. An empty replacement deletes the characters.
QX_EXPORT void replaceAllOccurrencesOfCharactersInSet(In<MutableString> string,
                                                      In<CharacterSet> set, StringArg withString);

// The POSIX path as one whose components are separated by colons, the name of the volume first; a
// path that ends with "/" is a directory's, and ends with a colon. A relative path starts at the
// current directory; "." and ".." are resolved by the text alone; a colon within a component
// becomes "/". The name of the volume is its label, else the last component of where it is mounted,
// else "Root". Nil for the empty path and one with a NUL. Looks at the file system.
QX_EXPORT Ref<String> hfsPathFromPOSIXPath(In<String> string);

}  // namespace qx
