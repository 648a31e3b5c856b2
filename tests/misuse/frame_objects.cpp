// What objects and the declarations of classes refuse.

#include <map>

#include <QXFoundation/archiver.h>
#include <QXFoundation/array.h>
#include <QXFoundation/class_builder.h>

namespace app {

struct Opaque {};

struct Interface {
  virtual ~Interface() = default;
  static const qx::Protocol& protocol() {
    static constexpr qx::Protocol p("Interface");
    return p;
  }
};

class Thing : public qx::Object {
 public:
  explicit Thing(int n) : number(n) {}
  int number;
  Opaque opaque;
  const char* text = "";
  const std::string_view view = "";
  void take(const Opaque&) {}
  void change(std::string&) {}
  Opaque give() const { return {}; }
  Opaque hidden() const { return {}; }
  int plus(int n) const { return number + n; }
  static qx::Ref<Thing> fromText(qx::StringArg) { return nullptr; }
};

class Other : public qx::Object {
 public:
  int elsewhere = 0;
  int get() const { return elsewhere; }
};
void describe(qx::ClassBuilder<Other>& c) { c.name("Other"); }

class Undescribed : public qx::Object {};

class WithoutDefault : public qx::Object {
 public:
  explicit WithoutDefault(int) {}
  void encodeWithCoder(qx::Archiver&) const {}
  void decodeWithCoder(qx::Unarchiver&) {}
};

struct Row {
  int number = 0;
  int twice() const { return number * 2; }
};

void describe(qx::ClassBuilder<Thing>& c) {
  c.name("Thing").property("number", &Thing::number).operation("plus:", &Thing::plus);
#if MISUSE == 1
  // EXPECT-ERROR(field that is no value): the field's type M cannot become a PropertyValue
  c.property("opaque", &Thing::opaque);
#elif MISUSE == 2
  // EXPECT-ERROR(field that can not be set): a PropertyValue cannot become the field's type M
  c.property("text", &Thing::text);
#elif MISUSE == 3
  // EXPECT-ERROR(field of another class): the field is not T's
  c.property("elsewhere", &Other::elsewhere);
#elif MISUSE == 4
  // EXPECT-ERROR(getter of another class): the getter is not T's
  c.property("get", &Other::get);
#elif MISUSE == 5
  // EXPECT-ERROR(getter of what is no value): no matching (member )?function.*property
  c.property("hidden", &Thing::hidden);
#elif MISUSE == 6
  // EXPECT-ERROR(parameter that is no value): a parameter of f cannot be made from a PropertyValue
  c.operation("take:", &Thing::take);
#elif MISUSE == 7
  // EXPECT-ERROR(parameter to be changed): a parameter of f cannot be made from a PropertyValue
  c.operation("change:", &Thing::change);
#elif MISUSE == 8
  // EXPECT-ERROR(result that is no value): what f gives cannot become a PropertyValue
  c.operation("give", &Thing::give);
#elif MISUSE == 9
  // EXPECT-ERROR(operation without its colon): the_selector_needs_one_colon_for_each_argument
  c.operation("plus", &Thing::plus);
#elif MISUSE == 10
  // EXPECT-ERROR(operation with a colon too many): the_selector_needs_one_colon_for_each_argument
  c.operation("plus:and:", &Thing::plus);
#elif MISUSE == 11
  // EXPECT-ERROR(operation of another class): f is not T's
  c.operation("get", &Other::get);
#elif MISUSE == 12
  // EXPECT-ERROR(base that is none): S is not a base class of T
  c.inherits<Other>();
#elif MISUSE == 13
  // EXPECT-ERROR(itself as base): S is not a base class of T
  c.inherits<Thing>();
#elif MISUSE == 14
  // EXPECT-ERROR(interface that is not implemented): T does not derive from the interface P
  c.conforms<Interface>();
#elif MISUSE == 15
  // EXPECT-ERROR(archived without the functions): T needs  void encodeWithCoder
  c.archived();
#elif MISUSE == 16
  // EXPECT-ERROR(text initialiser of another class): no matching (member )?function.*initialisedFromText
  c.initialisedFromText<&qx::String::from>();
#elif MISUSE == 17
  // EXPECT-ERROR(function operation with an unfit parameter): a parameter of f cannot be made from a PropertyValue
  c.operation("take:", +[](const qx::PropertyValue&, const Opaque&) {});
#elif MISUSE == 18
  // EXPECT-ERROR(function operation with an unfit result): what f gives cannot become a PropertyValue
  c.operation("give", +[](const qx::PropertyValue&) { return Opaque(); });
#endif
}

#if MISUSE == 19
// EXPECT-ERROR(archived without a default constructor): T needs a default constructor
void describe(qx::ClassBuilder<WithoutDefault>& c) { c.archived(); }
const qx::Class& f() { return qx::classOf<WithoutDefault>(); }
#elif MISUSE == 20
// EXPECT-ERROR(operation of a plain struct): a plain struct performs no operations
void describe(qx::ClassBuilder<Row>& c) { c.operation("twice", &Row::twice); }
#elif MISUSE == 21
// EXPECT-ERROR(new): (create_me_with_qx_make|abstract)
qx::Object* f() { return new Thing(1); }
#elif MISUSE == 22
// EXPECT-ERROR(local variable): (create_me_with_qx_make|abstract)
void f() { Thing t(1); }
#elif MISUSE == 23
// EXPECT-ERROR(delete): (protected|private|deleted|inaccessible)
void f(qx::Object* o) { delete o; }
#elif MISUSE == 24
// EXPECT-ERROR(copy): (deleted|abstract)
void f(const qx::Object& o) {
  struct Copy : qx::Object {
    Copy(const qx::Object& x) : qx::Object(x) {}
  };
  (void)o;
}
#elif MISUSE == 25
// EXPECT-ERROR(no description): declare  void describe\(qx::ClassBuilder<T>&\)  beside T
qx::Ref<Undescribed> f() { return qx::make<Undescribed>(); }
#elif MISUSE == 26
// EXPECT-ERROR(arguments that no constructor takes): no matching function.*make
qx::Ref<Thing> f() { return qx::make<Thing>("text"); }
#elif MISUSE == 27
// EXPECT-ERROR(make of what is no object): no matching function.*make
auto f() { return qx::make<Row>(); }
#elif MISUSE == 28
// EXPECT-ERROR(thing that is made and forgotten): (nodiscard|unused-result)
#pragma GCC diagnostic error "-Wunused-result"
void f() { qx::make<Thing>(1); }
#elif MISUSE == 29
// EXPECT-ERROR(protocol that is copied): deleted
qx::Protocol f() { return Interface::protocol(); }
#elif MISUSE == 30
// EXPECT-ERROR(class of a parameter without description): declare  void describe\(qx::ClassBuilder<T>&\)  beside T
qx::Ref<Undescribed> f(const qx::PropertyValue& v) {
  return qx::FromValue<qx::Ref<Undescribed>>::get(v);
}
#elif MISUSE == 31
// EXPECT-ERROR(handle of another class into a borrow): (no viable conversion|could not convert|cannot convert|no known conversion|no matching)
void g(qx::In<Thing>);
void f(const qx::Ref<Other>& o) { g(o); }
#endif

[[maybe_unused]] qx::Ref<Thing> rightUse() { return qx::make<Thing>(1); }

}  // namespace app
