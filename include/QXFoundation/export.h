// Marks what the shared library exports; everything unmarked stays inside it.
//
//   class QX_EXPORT Fraction { ... };
//   QX_EXPORT bool qxIsEmpty(...);
//
// QX_STATIC is defined for users of the static library (both packages do it): nothing is marked, so
// that a program or library made from it exports nothing on its behalf.
//
// QX_BUILDING is defined while the library's own sources are compiled, and never for users.
// Exporting and importing carry the same mark on ELF systems: what a library exports may be
// replaced by another, and is found by its name.

#pragma once

#if defined(QX_STATIC) && !defined(QX_BUILDING)
// Nothing to be marked.
#define QX_EXPORT
#else
// Exported from the shared library.
#define QX_EXPORT __attribute__((visibility("default")))
#endif
