// qxMap, qxFilter, qxReduce, qxFlatMap, qxContains, qxForEach, and each with _class

#include "tests/vector_check/driver.h"
#include "tests/vector_check/extended_values.h"
#include "tests/vector_check/functional_blocks.h"

namespace vector_check {

using namespace qx;

namespace {

using Value = const PropertyValue&;

const Class& classNamedIn(const json& args) {
  const auto name = args.at("class").get<std::string>();
  if (name == "number") return classOf<Number>();
  if (name == "string") return classOf<String>();
  if (name == "array") return classOf<Array>();
  return *PropertyValue(null).cls();
}

// What the blocks were given, and the blocks in both their forms.
struct Case {
  explicit Case(const json& a) : args(a), array(extendedArray(a.at("array"))) {}

  auto transform() {
    return [this](Value e) {
      calls.push_back(extendedJson(e));
      return transformed(args.at("transform").get<std::string>(), e);
    };
  }
  auto predicate() {
    return [this](Value e) {
      calls.push_back(extendedJson(e));
      return judged(args.at("predicate").get<std::string>(), e);
    };
  }
  auto reducer() {
    return [this](Value value, Value e) {
      calls.push_back(json::array({extendedJson(value), extendedJson(e)}));
      return reduced(args.at("reducer").get<std::string>(), value, e);
    };
  }
  auto action() {
    return [this](Value e) { calls.push_back(extendedJson(e)); };
  }
  PropertyValue initial() const { return extendedValue(args.at("initial")); }

  const json& args;
  Ref<Array> array;
  json calls = json::array();
};

// A block of the element, its index and the stop flag that does what the block of the element does.
template <class F>
auto indexed(F block) {
  return [block](Value e, std::size_t, bool&) mutable { return block(e); };
}
template <class F>
auto indexedReducer(F block) {
  return [block](Value v, Value e, std::size_t, bool&) mutable { return block(v, e); };
}

template <class Run>
json outcomeOf(const json& args, Run run) {
  Case c(args);
  json actual = json::object();
  try {
    run(c, actual);
  } catch (const Exception& e) {
    actual["raise"] = e.name();
  }
  actual["calls"] = c.calls;
  return actual;
}

template <class Run>
Outcome checked(const json& args, const json& expect, Run run) {
  return compare(expect, outcomeOf(args, run));
}
// The forms without a class are run with both kinds of block.
template <class Plain, class Indexed>
Outcome checkedTwice(const json& args, const json& expect, Plain plain, Indexed withIndex) {
  Outcome first = checked(args, expect, plain);
  return first.passed ? checked(args, expect, withIndex) : first;
}

Outcome map(const json& args, const json& expect) {
  return checkedTwice(
      args, expect,
      [](Case& c, json& out) { out["result"] = extendedJson(qxMap(c.array, c.transform())); },
      [](Case& c, json& out) {
        out["result"] = extendedJson(qxMap(c.array, indexed(c.transform())));
      });
}
Outcome mapClass(const json& args, const json& expect) {
  return checked(args, expect, [](Case& c, json& out) {
    out["result"] = extendedJson(qxMap(c.array, c.transform(), classNamedIn(c.args)));
  });
}

Outcome filter(const json& args, const json& expect) {
  return checkedTwice(
      args, expect,
      [](Case& c, json& out) { out["result"] = extendedJson(qxFilter(c.array, c.predicate())); },
      [](Case& c, json& out) {
        out["result"] = extendedJson(qxFilter(c.array, indexed(c.predicate())));
      });
}
Outcome filterClass(const json& args, const json& expect) {
  return checked(args, expect, [](Case& c, json& out) {
    out["result"] = extendedJson(qxFilter(c.array, c.predicate(), classNamedIn(c.args)));
  });
}

Outcome reduce(const json& args, const json& expect) {
  return checkedTwice(
      args, expect,
      [](Case& c, json& out) {
        out["result"] = extendedJson(qxReduce(c.array, c.initial(), c.reducer()));
      },
      [](Case& c, json& out) {
        out["result"] = extendedJson(qxReduce(c.array, c.initial(), indexedReducer(c.reducer())));
      });
}
Outcome reduceClass(const json& args, const json& expect) {
  return checked(args, expect, [](Case& c, json& out) {
    out["result"] = extendedJson(qxReduce(c.array, c.initial(), c.reducer(), classNamedIn(c.args)));
  });
}

Outcome flatMap(const json& args, const json& expect) {
  return checkedTwice(
      args, expect,
      [](Case& c, json& out) { out["result"] = extendedJson(qxFlatMap(c.array, c.transform())); },
      [](Case& c, json& out) {
        out["result"] = extendedJson(qxFlatMap(c.array, indexed(c.transform())));
      });
}
Outcome flatMapClass(const json& args, const json& expect) {
  return checked(args, expect, [](Case& c, json& out) {
    out["result"] = extendedJson(qxFlatMap(c.array, c.transform(), classNamedIn(c.args)));
  });
}

Outcome contains(const json& args, const json& expect) {
  return checkedTwice(
      args, expect, [](Case& c, json& out) { out["result"] = qxContains(c.array, c.predicate()); },
      [](Case& c, json& out) { out["result"] = qxContains(c.array, indexed(c.predicate())); });
}
Outcome containsClass(const json& args, const json& expect) {
  return checked(args, expect, [](Case& c, json& out) {
    out["result"] = qxContains(c.array, c.predicate(), classNamedIn(c.args));
  });
}

Outcome forEach(const json& args, const json& expect) {
  return checkedTwice(
      args, expect, [](Case& c, json&) { qxForEach(c.array, c.action()); },
      [](Case& c, json&) { qxForEach(c.array, indexed(c.action())); });
}
Outcome forEachClass(const json& args, const json& expect) {
  return checked(args, expect,
                 [](Case& c, json&) { qxForEach(c.array, c.action(), classNamedIn(c.args)); });
}

}  // namespace

void addFunctionalOperations(Operations& operations) {
  operations["qxMap"] = map;
  operations["qxMap_class"] = mapClass;
  operations["qxFilter"] = filter;
  operations["qxFilter_class"] = filterClass;
  operations["qxReduce"] = reduce;
  operations["qxReduce_class"] = reduceClass;
  operations["qxFlatMap"] = flatMap;
  operations["qxFlatMap_class"] = flatMapClass;
  operations["qxContains"] = contains;
  operations["qxContains_class"] = containsClass;
  operations["qxForEach"] = forEach;
  operations["qxForEach_class"] = forEachClass;
}

}  // namespace vector_check
