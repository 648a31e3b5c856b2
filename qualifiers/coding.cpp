#include "qualifiers/coding.h"

#include <QXFoundation/archiver.h>

#include "qualifiers/leaf_test.h"

namespace qx::detail {
namespace {

void encodeSelector(Selector selector, Archiver& a) {
  a.encodeObject(selector.isNull() ? PropertyValue() : PropertyValue(selector.text()));
}

Selector decodeSelector(Unarchiver& u) { return Selector::named(u.decode<Ref<String>>()); }

}  // namespace

void QualifierCoding::encode(const QXQualifier&, Archiver&) {}
void QualifierCoding::decode(QXQualifier&, Unarchiver&) {}

void QualifierCoding::encode(const QXAndQualifier& q, Archiver& a) {
  a.encodeObject(q.qualifiers_);
}
void QualifierCoding::decode(QXAndQualifier& q, Unarchiver& u) {
  q.qualifiers_ = u.decode<Ref<Array>>();
}

void QualifierCoding::encode(const QXOrQualifier& q, Archiver& a) { a.encodeObject(q.qualifiers_); }
void QualifierCoding::decode(QXOrQualifier& q, Unarchiver& u) {
  q.qualifiers_ = u.decode<Ref<Array>>();
}

void QualifierCoding::encode(const QXNotQualifier& q, Archiver& a) { a.encodeObject(q.qualifier_); }
void QualifierCoding::decode(QXNotQualifier& q, Unarchiver& u) {
  q.qualifier_ = u.decode<Ref<QXQualifier>>();
}

void QualifierCoding::encode(const QXKeyValueQualifier& q, Archiver& a) {
  a.encodeObject(q.key());
  encodeSelector(q.selector(), a);
  a.encodeObject(q.value());
}
void QualifierCoding::decode(QXKeyValueQualifier& q, Unarchiver& u) {
  Ref<String> key = u.decode<Ref<String>>();
  const Selector selector = decodeSelector(u);
  q.test_ = std::make_unique<ConstantTest>(std::move(key), selector, u.decodeObject());
}

void QualifierCoding::encode(const QXKeyComparisonQualifier& q, Archiver& a) {
  a.encodeObject(q.leftKey());
  encodeSelector(q.selector(), a);
  a.encodeObject(q.rightKey());
}
void QualifierCoding::decode(QXKeyComparisonQualifier& q, Unarchiver& u) {
  Ref<String> left = u.decode<Ref<String>>();
  const Selector selector = decodeSelector(u);
  q.test_ = std::make_unique<KeyPairTest>(std::move(left), selector, u.decode<Ref<String>>());
}

void QualifierCoding::encode(const QXQualifierVariable& v, Archiver& a) { a.encodeObject(v.key_); }
void QualifierCoding::decode(QXQualifierVariable& v, Unarchiver& u) {
  v.key_ = u.decode<Ref<String>>();
}

}  // namespace qx::detail
