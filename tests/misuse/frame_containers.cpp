// What the library's own objects and their handles refuse: changing immutable ones, lists of
// values, other classes.

#include <QXFoundation/data.h>
#include <QXFoundation/dictionary.h>
#include <QXFoundation/error.h>
#include <QXFoundation/set.h>
#include <QXFoundation/weak_ref.h>

namespace {

[[maybe_unused]] bool mayFail(qx::Ref<qx::Error>* error) { return error == nullptr; }
[[maybe_unused]] void take(qx::In<qx::Array>) {}

[[maybe_unused]] void rightUse(const qx::Ref<qx::MutableString>& s,
                               const qx::Ref<qx::MutableArray>& a) {
  s->appendString("x");
  a->addObject(1);
  take(a);
  qx::Ref<qx::Error> error;
  (void)mayFail(&error);
  const qx::WeakRef<qx::Array> weak = a;
  (void)weak.lock();
}

#if MISUSE == 1
// EXPECT-ERROR(change of an immutable string): no member named .*appendString
void f(const qx::Ref<qx::String>& s) { s->appendString("x"); }
#elif MISUSE == 2
// EXPECT-ERROR(change of an immutable dictionary): no member named .*setObject
void f(const qx::Ref<qx::Dictionary>& d) { d->setObject(1, "k"); }
#elif MISUSE == 3
// EXPECT-ERROR(removal from an immutable dictionary): no member named .*removeObjectForKey
void f(const qx::Ref<qx::Dictionary>& d) { d->removeObjectForKey("k"); }
#elif MISUSE == 4
// EXPECT-ERROR(change of an immutable set): no member named .*addObject
void f(const qx::Ref<qx::Set>& s) { s->addObject(1); }
#elif MISUSE == 5
// EXPECT-ERROR(change of immutable data): no member named .*appendBytes
void f(const qx::Ref<qx::Data>& d) { d->appendBytes("x"); }
#elif MISUSE == 6
// EXPECT-ERROR(change of data in place): (read-only|not assignable)
void f(const qx::Ref<qx::Data>& d) { d->bytes()[0] = 1; }
#elif MISUSE == 7
// EXPECT-ERROR(initializer list as dictionary): (no matching|no viable|could not convert|cannot convert)
qx::Ref<qx::Dictionary> f() { return {{"a", 1}, {"b", 2}, {"c", 3}}; }
#elif MISUSE == 8
// EXPECT-ERROR(initializer list as mutable array): (no matching|no viable|could not convert|cannot convert)
qx::Ref<qx::MutableArray> f() { return {1, 2, 3}; }
#elif MISUSE == 9
// EXPECT-ERROR(mutable array of a list): (no matching function|abstract)
auto f() { return qx::make<qx::MutableArray>(1, 2, 3); }
#elif MISUSE == 10
// EXPECT-ERROR(local mutable array): (create_me_with_qx_make|abstract)
void f() { qx::MutableArray a; }
#elif MISUSE == 11
// EXPECT-ERROR(local mutable dictionary): (create_me_with_qx_make|abstract)
void f() { qx::MutableDictionary d; }
#elif MISUSE == 12
// EXPECT-ERROR(new on a class of the library): (create_me_with_qx_make|abstract)
qx::Object* f() { return new qx::MutableArray; }
#elif MISUSE == 13
// EXPECT-ERROR(place of another class for an error): (cannot convert|no matching function)
bool f() {
  qx::Ref<qx::String> s;
  return mayFail(&s);
}
#elif MISUSE == 14
// EXPECT-ERROR(weak reference to another class): (conversion from|no viable conversion|could not convert|cannot convert)
qx::WeakRef<qx::Array> f(const qx::Ref<qx::String>& s) { return s; }
#elif MISUSE == 15
// EXPECT-ERROR(weak reference to a subclass): (conversion from|no viable conversion|could not convert|cannot convert)
qx::WeakRef<qx::MutableArray> f(const qx::Ref<qx::Array>& a) { return a; }
#elif MISUSE == 16
// EXPECT-ERROR(handle of an unrelated class into a borrow): (no viable conversion|could not convert|cannot convert|no known conversion|no matching)
void f(const qx::Ref<qx::String>& s) { take(s); }
#elif MISUSE == 17
// EXPECT-ERROR(immutable array where a mutable one is wanted): (no viable conversion|could not convert|cannot convert|no known conversion|no matching)
qx::Ref<qx::MutableArray> f(const qx::Ref<qx::Array>& a) { return a; }
#endif

}  // namespace
