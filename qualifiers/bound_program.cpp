#include "qualifiers/bound_program.h"

#include <limits>

#include "frame/native_field.h"
#include "qualifiers/value_kinds.h"

namespace qx::detail {
namespace {

using Way = BoundStep::Way;

// Integers up to here are doubles.
constexpr std::int64_t kExactDouble = std::int64_t{1} << 53;

// A constant that doubles are compared with directly.
bool asReal(const CompiledTest& test, double& real) {
  if (test.kind() == CompiledTest::Kind::integer) {
    real = static_cast<double>(test.integer());
    return test.integer() >= -kExactDouble && test.integer() <= kExactDouble;
  }
  if (test.kind() != CompiledTest::Kind::number || test.number().kind != NumberKind::real)
    return false;
  real = test.number().d;
  return real == real;
}

}  // namespace

// The integers that are accepted are one range, or all but one.
void BoundProgram::setRange(BoundStep& bound, const CompiledTest& test) {
  constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
  const std::int64_t n = test.integer();
  const bool takesEqual = test.accepts(0);
  // What is above n is what is not at most n, and what is below it what is not at least n.
  bool isNegated = !takesEqual;
  std::int64_t low = n;
  std::int64_t high = n;
  if (takesEqual ? test.accepts(-1) : test.accepts(1) && !test.accepts(-1)) low = kLeast;
  if (takesEqual ? test.accepts(1) : test.accepts(-1) && !test.accepts(1)) high = kMost;
  bound.isNegated = isNegated;
  bound.low = low;
  bound.span = static_cast<std::uint64_t>(high) - static_cast<std::uint64_t>(low);
}

// The relation to a constant that doubles are compared with directly; NaN orders below.
bool BoundProgram::setRelation(BoundStep& bound, const CompiledTest& test) {
  if (!asReal(test, bound.real)) return false;
  const bool below = test.accepts(-1);
  const bool above = test.accepts(1);
  bound.isNegated = below;
  if (below == above) {
    bound.relation = BoundStep::Relation::equal;
  } else {
    bound.relation = test.accepts(0) == above ? BoundStep::Relation::greaterOrEqual
                                              : BoundStep::Relation::greater;
  }
  return true;
}

void BoundProgram::start(const Program& program) {
  const std::vector<Program::Step>& steps = program.steps();
  suitsBlocks_ = false;  // what it was bound to before may have suited them
  steps_.assign(steps.size() + 2, BoundStep());
  end_ = steps_.data() + steps.size();
  const auto target = [this](Program::Target t) {
    return t == Program::kReject ? end_ : t == Program::kAccept ? end_ + 1 : steps_.data() + t;
  };
  entry_ = target(program.entry());
  stringIndex_ = stringClasses().fixed;
  for (std::size_t i = 0; i < steps.size(); ++i) {
    steps_[i].step = &steps[i];
    steps_[i].next[0] = target(steps[i].onFalse);
    steps_[i].next[1] = target(steps[i].onTrue);
  }
}

void BoundProgram::finish() {
  suitsBlocks_ = steps_.size() <= kMaxBlockSteps + 2;
  for (const BoundStep* step = steps_.data(); step != end_; ++step) {
    suitsBlocks_ &= step->way != Way::unbound && step->next[0] != step->next[1];
  }
}

void BoundProgram::bindToWords(const Program& program) {
  start(program);
  for (std::size_t i = 0; i < program.steps().size(); ++i) {
    const Program::Step& step = program.steps()[i];
    if (step.readsOneKey()) bindWord(steps_[i], *step.test);
  }
  finish();
}

void BoundProgram::bindToShape(const Program& program, const Layout& layout) {
  start(program);
  for (std::size_t i = 0; i < program.steps().size(); ++i) {
    const Program::Step& step = program.steps()[i];
    BoundStep& bound = steps_[i];
    if (!step.readsOneKey()) continue;
    const Place& place = layout.place(step.key);
    if (place.way != Place::Way::slot) continue;
    bound.place = static_cast<std::int32_t>(place.slot);
    bindWord(bound, *step.test);
  }
  finish();
}

void BoundProgram::bindWord(BoundStep& bound, const CompiledTest& test) {
  bound.way = Way::wordOther;
  switch (test.kind()) {
    case CompiledTest::Kind::integer:
      bound.way = Way::wordInteger;
      setRange(bound, test);
      return;
    case CompiledTest::Kind::number:
      if (setRelation(bound, test)) bound.way = Way::wordReal;
      return;
    case CompiledTest::Kind::text:
      if (!test.equates() || test.text().wide) return;
      bound.way = Way::wordText;
      bound.isNegated = !test.accepts(0);
      bound.bytes = test.text().latin1View().data();
      bound.length = test.text().size;
      return;
    case CompiledTest::Kind::pattern:
      if (!test.test().pattern->decidesBytes()) return;
      bound.way = Way::wordPattern;
      bound.pattern = &*test.test().pattern;
      return;
    default:
      return;
  }
}

void BoundProgram::bindToClass(const Program& program, const Layout& layout,
                               const Subject& subject) {
  start(program);
  if (layout.hasEvaluator()) return;
  for (std::size_t i = 0; i < program.steps().size(); ++i) {
    const Program::Step& step = program.steps()[i];
    BoundStep& bound = steps_[i];
    if (!step.readsOneKey()) continue;
    const Place& place = layout.place(step.key);
    if (place.way == Place::Way::native) bindField(bound, *step.test, place, subject);
  }
  finish();
}

void BoundProgram::bindField(BoundStep& bound, const CompiledTest& test, const Place& place,
                             const Subject& subject) {
  const Property& property = *place.property;
  const auto* address = static_cast<const char*>(property.field(subject, property.payload));
  bound.place = static_cast<std::int32_t>(address - static_cast<const char*>(subject.address()));
  bound.type = property.type;
  bound.way = Way::otherField;
  const bool isInteger = test.kind() == CompiledTest::Kind::integer;
  if (property.type == FieldType::real && setRelation(bound, test)) {
    bound.way = Way::real;
  } else if (property.type == FieldType::int32 && isInteger) {
    bound.way = Way::int32;
    setRange(bound, test);
  } else if (property.type == FieldType::int64 && isInteger) {
    bound.way = Way::int64;
    setRange(bound, test);
  } else if (property.type == FieldType::text && test.equates() && test.utf8() != nullptr) {
    bound.way = Way::text;
    bound.isNegated = !test.accepts(0);
    bound.bytes = test.utf8()->data();
    bound.length = test.utf8()->size();
  } else if (property.type == FieldType::text && test.kind() == CompiledTest::Kind::pattern &&
             test.test().pattern->decidesBytes()) {
    bound.way = Way::pattern;
    bound.pattern = &*test.test().pattern;
  }
}

bool BoundProgram::decideField(const BoundStep& step, const void* base) {
  return step.step->test->decide(readField(step.type, static_cast<const char*>(base) + step.place));
}

}  // namespace qx::detail
