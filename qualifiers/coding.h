#pragma once

// How qualifiers are archived: what each class writes, in this order, is part of the form of
// archives.

#include <QXFoundation/qualifier.h>

namespace qx {
class Archiver;
class Unarchiver;
}  // namespace qx

namespace qx::detail {

struct QualifierCoding {
  // The base class has no fields.
  static void encode(const QXQualifier& q, Archiver& a);
  static void decode(QXQualifier& q, Unarchiver& u);
  // The array of members.
  static void encode(const QXAndQualifier& q, Archiver& a);
  static void decode(QXAndQualifier& q, Unarchiver& u);
  static void encode(const QXOrQualifier& q, Archiver& a);
  static void decode(QXOrQualifier& q, Unarchiver& u);
  // The inner qualifier.
  static void encode(const QXNotQualifier& q, Archiver& a);
  static void decode(QXNotQualifier& q, Unarchiver& u);
  // Key, the selector's name, value.
  static void encode(const QXKeyValueQualifier& q, Archiver& a);
  static void decode(QXKeyValueQualifier& q, Unarchiver& u);
  // Left key, the selector's name, right key.
  static void encode(const QXKeyComparisonQualifier& q, Archiver& a);
  static void decode(QXKeyComparisonQualifier& q, Unarchiver& u);
  // The key.
  static void encode(const QXQualifierVariable& v, Archiver& a);
  static void decode(QXQualifierVariable& v, Unarchiver& u);
};

}  // namespace qx::detail
