// What values, texts and selectors refuse.

#include <vector>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/selector.h>

namespace {

[[maybe_unused]] void rightUse(const qx::PropertyValue& v, const qx::Ref<qx::String>& s) {
  if (v != nullptr && v.boolValue()) (void)v.peek<qx::String>();
  (void)qx::PropertyValue(int{'c'});
  (void)qx::PropertyValue("c");
  (void)qx::PropertyValue(static_cast<double>(1.0L));
  (void)(qx::isSame(s, s) && qx::isEqual(s, s) && s == nullptr);
  (void)qx::performSelector(v, "isEqual:", 1);
  (void)qx::performSelector(v, qx::Selector::named("any"), 1);
  (void)v.to<std::uint8_t>();
}

#if MISUSE == 1
// EXPECT-ERROR(value as condition): (deleted.*operator bool|operator bool.*deleted)
void f(const qx::PropertyValue& v) {
  if (v) return;
}
#elif MISUSE == 2
// EXPECT-ERROR(value as bool): (cannot convert|no viable conversion|deleted.*operator bool)
bool f(const qx::PropertyValue& v) { return v; }
#elif MISUSE == 3
// EXPECT-ERROR(negated value): (deleted.*operator bool|operator bool.*deleted)
bool f(const qx::PropertyValue& v) { return !v; }
#elif MISUSE == 4
// EXPECT-ERROR(char as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(char c) { return c; }
#elif MISUSE == 5
// EXPECT-ERROR(long double as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(long double d) { return d; }
#elif MISUSE == 6
// EXPECT-ERROR(foreign pointer as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(int* p) { return p; }
#elif MISUSE == 7
// EXPECT-ERROR(void pointer as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(void* p) { return p; }
#elif MISUSE == 8
// EXPECT-ERROR(function as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f() { return &rightUse; }
#elif MISUSE == 9
// EXPECT-ERROR(wide character as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(char16_t c) { return c; }
#elif MISUSE == 10
// EXPECT-ERROR(a container of the standard library as value): (could not convert|no viable conversion|cannot convert)
qx::PropertyValue f(const std::vector<int>& v) { return v; }
#elif MISUSE == 11
// EXPECT-ERROR(handles compared by ==): (deleted.*operator==|deleted operator .==)
bool f(const qx::Ref<qx::String>& a, const qx::Ref<qx::String>& b) { return a == b; }
#elif MISUSE == 12
// EXPECT-ERROR(handles compared by !=): (deleted.*operator==|deleted operator .==)
bool f(const qx::Ref<qx::String>& a, const qx::Ref<qx::Object>& b) { return a != b; }
#elif MISUSE == 13
// EXPECT-ERROR(borrow from a temporary): deleted.*peek
qx::String* f(const qx::Ref<qx::Dictionary>& d) { return d->objectForKey("k").peek<qx::String>(); }
#elif MISUSE == 14
// EXPECT-ERROR(view of a type that has none): to<T>\(\): T is bool, an integer, float, double or std::string
auto f(const qx::PropertyValue& v) { return v.to<std::vector<int>>(); }
#elif MISUSE == 15
// EXPECT-ERROR(number as text): (deleted.*StringArg|StringArg.* has been explicitly marked deleted)
qx::Ref<qx::String> f() { return qx::String::from(5); }
#elif MISUSE == 16
// EXPECT-ERROR(zero as text): (deleted.*StringArg|StringArg.* has been explicitly marked deleted)
qx::Ref<qx::String> f() { return qx::String::from(0); }
#elif MISUSE == 17
// EXPECT-ERROR(character as key): (deleted.*StringArg|StringArg.* has been explicitly marked deleted)
qx::PropertyValue f(const qx::PropertyValue& v) { return v['k']; }
#elif MISUSE == 18
// EXPECT-ERROR(number as key): (deleted.*StringArg|StringArg.* has been explicitly marked deleted)
qx::PropertyValue f(const qx::PropertyValue& v) { return v.valueForKey(1); }
#elif MISUSE == 19
// EXPECT-ERROR(value as text): (no viable conversion|could not convert|cannot convert)
qx::Ref<qx::String> f(const qx::PropertyValue& v) { return qx::String::from(v); }
#elif MISUSE == 20
// EXPECT-ERROR(too few colons): the_selector_needs_one_colon_for_each_argument
qx::PropertyValue f(const qx::PropertyValue& v) { return qx::performSelector(v, "isEqual", 1); }
#elif MISUSE == 21
// EXPECT-ERROR(too many colons): the_selector_needs_one_colon_for_each_argument
qx::PropertyValue f(const qx::PropertyValue& v) { return qx::performSelector(v, "isEqual:"); }
#elif MISUSE == 22
// EXPECT-ERROR(three arguments): no matching function
qx::PropertyValue f(const qx::PropertyValue& v) {
  return qx::performSelector(v, "a:b:c:", 1, 2, 3);
}
#elif MISUSE == 23
// EXPECT-ERROR(selector from text of run time): no matching (function|conversion)
qx::Selector f(const char* text) { return qx::Selector(text); }
#elif MISUSE == 24
// EXPECT-ERROR(constant object as value): (deleted.*PropertyValue|PropertyValue.* has been explicitly marked deleted)
qx::PropertyValue f(const qx::String* s) { return s; }
#elif MISUSE == 25
// EXPECT-ERROR(initializer list as array): (no matching|no viable|could not convert|cannot convert)
qx::Ref<qx::Array> f() { return {1, 2, 3}; }
#elif MISUSE == 26
// EXPECT-ERROR(change of an immutable array): no member named .*addObject
void f(const qx::Ref<qx::Array>& a) { a->addObject(1); }
#elif MISUSE == 27
// EXPECT-ERROR(change of an element in place): (discards qualifiers|not marked const|no viable overloaded|no match for|no viable)
void f(const qx::Ref<qx::Array>& a) { *a->begin() = 1; }
#elif MISUSE == 28
// EXPECT-ERROR(handle to another class): (no viable conversion|could not convert|cannot convert|no known conversion|no matching)
qx::Ref<qx::Array> f(const qx::Ref<qx::String>& s) { return s; }
#endif

}  // namespace
