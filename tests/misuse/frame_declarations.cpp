// What the declarations of a class refuse beside single fields: bases, setters, names of
// operations, functions, coders.

#include <QXFoundation/archiver.h>
#include <QXFoundation/class_builder.h>

namespace app {

struct Opaque {};
struct Row {
  int number = 0;
};

class Other : public qx::Object {
 public:
  void setNumber(int) {}
};
void describe(qx::ClassBuilder<Other>& c) { c.name("Other"); }

class Thing : public qx::Object, public Row {
 public:
  int get() const { return 1; }
  void set(int) {}
  void setOpaque(const Opaque&) {}
  int count() { return 2; }
  bool same(const qx::PropertyValue&) const { return true; }
  std::size_t mix() const { return 3; }
  std::string text() const { return ""; }
  qx::Ref<qx::Object> twin() const { return nullptr; }
  static int total(int a) { return a; }
  static int takeOpaque(const Opaque&) { return 1; }
};

class WithoutDefault : public qx::Object {
 public:
  explicit WithoutDefault(int) {}
};

struct Coder {
  template <class T>
  static void encode(const T&, qx::Archiver&) {}
  template <class T>
  static void decode(T&, qx::Unarchiver&) {}
};
struct HalfCoder {
  static void encode(const Thing&, qx::Archiver&) {}
};
struct CoderOfOther {
  static void encode(const Other&, qx::Archiver&) {}
  static void decode(Other&, qx::Unarchiver&) {}
};

void describe(qx::ClassBuilder<Thing>& c) {
  c.name("Thing").property("value", &Thing::get, &Thing::set).archivedBy<Coder>();
  c.operation("total:", +[](const qx::PropertyValue&, int a) { return a; });
  c.classOperation("totalOf:", &Thing::total);
#if MISUSE == 1
  // EXPECT-ERROR(plain base): S is no Object; list the fields of a plain base directly
  c.inherits<Row>();
#elif MISUSE == 2
  // EXPECT-ERROR(setter of another class): f is not T's
  c.property("value", &Thing::get, &Other::setNumber);
#elif MISUSE == 3
  // EXPECT-ERROR(setter with an unfit parameter): no matching (member )?function.*property
  c.property("value", &Thing::get, &Thing::setOpaque);
#elif MISUSE == 4
  // EXPECT-ERROR(getter that may change its object): no matching (member )?function.*property
  c.property("count", &Thing::count);
#elif MISUSE == 5
  // EXPECT-ERROR(function with a colon too few): the_selector_needs_one_colon_for_each_argument
  c.operation("total", +[](const qx::PropertyValue&, int a) { return a; });
#elif MISUSE == 6
  // EXPECT-ERROR(function with a colon too many): the_selector_needs_one_colon_for_each_argument
  c.operation("total:and:", +[](const qx::PropertyValue&, int a) { return a; });
#elif MISUSE == 7
  // EXPECT-ERROR(coder without decode): Coder needs  static void encode\(const T&, qx::Archiver&\)
  c.archivedBy<HalfCoder>();
#elif MISUSE == 8
  // EXPECT-ERROR(coder of another class): Coder needs  static void encode\(const T&, qx::Archiver&\)
  c.archivedBy<CoderOfOther>();
#elif MISUSE == 9
  // EXPECT-ERROR(equality by selector): override_isEqual_hash_description_copy_or_mutableCopy_instead
  c.operation("isEqual:", &Thing::same);
#elif MISUSE == 10
  // EXPECT-ERROR(hash by selector): override_isEqual_hash_description_copy_or_mutableCopy_instead
  c.operation("hash", &Thing::mix);
#elif MISUSE == 11
  // EXPECT-ERROR(description by selector): override_isEqual_hash_description_copy_or_mutableCopy_instead
  c.operation("description", &Thing::text);
#elif MISUSE == 12
  // EXPECT-ERROR(copy by selector): override_isEqual_hash_description_copy_or_mutableCopy_instead
  c.operation("copy", &Thing::twin);
#elif MISUSE == 13
  // EXPECT-ERROR(mutable copy by selector, as a function): override_isEqual_hash_description_copy_or_mutableCopy_instead
  c.operation("mutableCopy", +[](const qx::PropertyValue& r) { return r; });
#elif MISUSE == 14
  // EXPECT-ERROR(class operation with an unfit parameter): a parameter of f cannot be made from a PropertyValue
  c.classOperation("takeOpaque:", &Thing::takeOpaque);
#elif MISUSE == 15
  // EXPECT-ERROR(class operation without its colon): the_selector_needs_one_colon_for_each_argument
  c.classOperation("totalOf", &Thing::total);
#elif MISUSE == 16
  // EXPECT-ERROR(member function as class operation): no matching (member )?function.*classOperation
  c.classOperation("mix", &Thing::mix);
#endif
}

#if MISUSE == 17
// EXPECT-ERROR(coder of a class without default constructor): T needs a default constructor
void describe(qx::ClassBuilder<WithoutDefault>& c) { c.archivedBy<Coder>(); }
const qx::Class& f() { return qx::classOf<WithoutDefault>(); }
#endif

[[maybe_unused]] qx::Ref<Thing> rightUse() { return qx::make<Thing>(); }

}  // namespace app
