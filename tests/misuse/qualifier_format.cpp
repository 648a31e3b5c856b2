// Formats that would raise, and formats that the compiler does not see.

#include <string>
#include <vector>

#include <QXFoundation/filter.h>
#include <QXFoundation/qualifier.h>
#include <QXFoundation/qualifier_explanation.h>

namespace {
struct NotDescribed {
  int n;
};
}  // namespace

void surroundings(const std::string& text, const qx::Ref<qx::Array>& people) {
  (void)qx::qualifierWithQualifierFormat("age > %d and name like %@ and score < %f and city = %s",
                                         1, "J*", 0.5, text);
  (void)qx::qualifierWithQualifierFormat(qx::runtimeFormat(text), 1);
  (void)qx::QXQualifier::qualifierWithQualifierFormat("a = 'x' and b = %d");
  (void)qx::QXQualifier::explainQualifierFormat("anything goes, here");
  (void)qx::QXKeyValueQualifier::initWithKey("age", "isLessThan:", 3);
  (void)qx::QXKeyValueQualifier::initWithKey("age", qx::Selector(), nullptr);
  (void)filteredArrayUsingQualifier(people, nullptr);
}

#if MISUSE == 1
// EXPECT-ERROR(more conversions than arguments): the_format_has_more_conversions_than_arguments
void f() { (void)qx::qualifierWithQualifierFormat("age > %d and name like %@", 1); }
#endif

#if MISUSE == 2
// EXPECT-ERROR(unknown conversion): unknown_conversion_write_percent_at_or_d_or_f_or_s_or_double_percent
void f() { (void)qx::qualifierWithQualifierFormat("age > %i", 1); }
#endif

#if MISUSE == 3
// EXPECT-ERROR(percent at the end): unknown_conversion_write_percent_at_or_d_or_f_or_s_or_double_percent
void f() { (void)qx::QXQualifier::qualifierWithQualifierFormat("share > 50%"); }
#endif

#if MISUSE == 4
// EXPECT-ERROR(text for an integer): percent_d_takes_an_integer_use_percent_at_for_other_values
void f() { (void)qx::qualifierWithQualifierFormat("age > %d", "21"); }
#endif

#if MISUSE == 5
// EXPECT-ERROR(bool for an integer): percent_d_takes_an_integer_use_percent_at_for_other_values
void f() { (void)qx::qualifierWithQualifierFormat("adult = %d", true); }
#endif

#if MISUSE == 6
// EXPECT-ERROR(integer for a float): percent_f_takes_a_floating_point_number_use_percent_d_for_integers
void f() { (void)qx::qualifierWithQualifierFormat("score > %f", 1); }
#endif

#if MISUSE == 7
// EXPECT-ERROR(object for text): percent_s_takes_text_use_percent_at_for_other_values
void f(const qx::Ref<qx::Array>& a) { (void)qx::qualifierWithQualifierFormat("city = %s", a); }
#endif

#if MISUSE == 8
// EXPECT-ERROR(a string as format): a format that is no literal is written qx::runtimeFormat\(text\)
void f(const std::string& text) { (void)qx::qualifierWithQualifierFormat(text, 1); }
#endif

#if MISUSE == 9
// EXPECT-ERROR(a pointer as format): a format that is no literal is written qx::runtimeFormat\(text\)
void f(const char* text) { (void)qx::QXQualifier::qualifierWithQualifierFormat(text); }
#endif

#if MISUSE == 10
// EXPECT-ERROR(an array as format): a format that is no literal is written qx::runtimeFormat\(text\)
void f() {
  char text[] = "a = b";
  (void)qx::qualifierWithQualifierFormat(text);
}
#endif

#if MISUSE == 11
// EXPECT-ERROR(a String as format): a format that is no literal is written qx::runtimeFormat\(text\)
void f(const qx::Ref<qx::String>& text) { (void)qx::qualifierWithQualifierFormat(text); }
#endif

#if MISUSE == 12
// EXPECT-ERROR(a char as argument): an argument of a qualifier format is a bool, a number, text, nil
void f() { (void)qx::qualifierWithQualifierFormat("initial = %@", 'J'); }
#endif

#if MISUSE == 13
// EXPECT-ERROR(a pointer to anything as argument): an argument of a qualifier format is a bool, a number, text, nil
void f(int* p) { (void)qx::qualifierWithQualifierFormat("a = %@", p); }
#endif

#if MISUSE == 14
// EXPECT-ERROR(a container of the standard library as argument): an argument of a qualifier format is a bool, a number
void f() { (void)qx::qualifierWithQualifierFormat("a contains %@", std::vector<int>{1}); }
#endif

#if MISUSE == 15
// EXPECT-ERROR(an explanation checks too): the_format_has_more_conversions_than_arguments
void f() { (void)qx::QXQualifier::explainQualifierFormat("age > %d"); }
#endif

#if MISUSE == 16
// EXPECT-ERROR(an operator without its colon): the_selector_needs_one_colon_for_each_argument
void f() { (void)qx::QXKeyValueQualifier::initWithKey("age", "isLessThan", 3); }
#endif

#if MISUSE == 17
// EXPECT-ERROR(no qualifier among the members): no matching function for call to .*initWithQualifiers
void f() { (void)qx::QXAndQualifier::initWithQualifiers("age > 3"); }
#endif

#if MISUSE == 18
// EXPECT-ERROR(a type that is not described): declare  void describe\(qx::ClassBuilder<T>&\)  beside T
void f() { qx::Matching<NotDescribed> m(nullptr); }
#endif
