// Expressions that read as conditions and are none.

#include <QXFoundation/qualifier_key.h>

void surroundings(const qx::PropertyValue& object) {
  const auto q = qx::key("age") > 30 && !qx::key("name").like("J*");
  if (q.evaluateWithObject(object)) return;
  (void)(qx::key("a") == qx::key("b") || q);
}

#if MISUSE == 1
// EXPECT-ERROR(as a condition): a qualifier expression is no condition: nothing is compared yet; ask evaluateWithObject
void f() {
  if (qx::key("age") > 30) return;
}
#endif

#if MISUSE == 2
// EXPECT-ERROR(with a bool): a qualifier expression is no condition: nothing is compared yet; ask evaluateWithObject
bool f(bool other) { return qx::key("age") > 30 && other; }
#endif

#if MISUSE == 3
// EXPECT-ERROR(a key alone): a key alone is no qualifier: compare it, as in key\("adult"\) == true
auto f() { return qx::key("adult") && qx::key("age") > 30; }
#endif

#if MISUSE == 4
// EXPECT-ERROR(a key negated): a key alone is no qualifier: compare it, as in key\("adult"\) == true
auto f() { return !qx::key("adult"); }
#endif

#if MISUSE == 5
// EXPECT-ERROR(the key on the right): the key stands on the left of a comparison: key\("age"\) > 30
auto f() { return 30 < qx::key("age"); }
#endif

#if MISUSE == 6
// EXPECT-ERROR(text on the left): the key stands on the left of a comparison: key\("age"\) > 30
auto f() { return "Jim" != qx::key("name"); }
#endif

#if MISUSE == 7
// EXPECT-ERROR(equality with the key on the right): is not .?bool
auto f() { return 30 == qx::key("age"); }
#endif

#if MISUSE == 8
// EXPECT-ERROR(a chain): no match for .operator<|invalid operands to binary expression
auto f() { return (qx::key("age") > 3) < 5; }
#endif

#if MISUSE == 9
// EXPECT-ERROR(a char as constant): deleted
auto f() { return qx::key("initial").contains('J'); }
#endif
