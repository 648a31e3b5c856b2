#include "qualifiers/bound_program.h"

#include <algorithm>

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

void BoundProgram::start(const Program& program) {
  const std::vector<Program::Step>& steps = program.steps();
  steps_.assign(steps.size() + 2, BoundStep());
  textSlots_.clear();
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
    if (steps[i].test) steps_[i].accepted = steps[i].test->accepted();
  }
}

void BoundProgram::bindToShape(const Program& program, const Layout& layout) {
  start(program);
  for (std::size_t i = 0; i < program.steps().size(); ++i) {
    const Program::Step& step = program.steps()[i];
    BoundStep& bound = steps_[i];
    if (!step.test || step.key == Program::kNoKey || !step.singleStep) continue;
    const Place& place = layout.place(step.key);
    if (place.way != Place::Way::slot) continue;
    bound.place = place.slot;
    bindWord(bound, *step.test);
  }
}

void BoundProgram::bindWord(BoundStep& bound, const CompiledTest& test) {
  bound.way = Way::wordOther;
  switch (test.kind()) {
    case CompiledTest::Kind::integer:
      bound.way = Way::wordInteger;
      bound.integer = test.integer();
      return;
    case CompiledTest::Kind::number:
      if (asReal(test, bound.real)) bound.way = Way::wordReal;
      return;
    case CompiledTest::Kind::text:
      textSlots_.push_back(bound.place);
      if (!test.equates() || test.text().wide) return;
      bound.way = Way::wordText;
      bound.bytes = test.text().latin1View().data();
      bound.length = test.text().size;
      return;
    case CompiledTest::Kind::pattern:
      textSlots_.push_back(bound.place);
      if (!test.test().pattern->decidesBytes()) return;
      bound.way = Way::wordPattern;
      bound.pattern = &*test.test().pattern;
      return;
    default:
      return;
  }
}

void BoundProgram::bindToClass(const Program& program, const Layout& layout, const Object& object) {
  start(program);
  if (layout.hasEvaluator()) return;
  for (std::size_t i = 0; i < program.steps().size(); ++i) {
    const Program::Step& step = program.steps()[i];
    BoundStep& bound = steps_[i];
    if (!step.test || step.key == Program::kNoKey || !step.singleStep) continue;
    const Place& place = layout.place(step.key);
    if (place.way == Place::Way::native) bindField(bound, *step.test, place, object);
  }
}

void BoundProgram::bindField(BoundStep& bound, const CompiledTest& test, const Place& place,
                             const Object& object) {
  const Property& property = *place.property;
  const auto* address =
      static_cast<const char*>(property.field(Subject::of(object), property.payload));
  bound.place = static_cast<std::uint32_t>(address - reinterpret_cast<const char*>(&object));
  bound.type = property.type;
  bound.way = Way::otherField;
  const bool isInteger = test.kind() == CompiledTest::Kind::integer;
  if (property.type == FieldType::real && asReal(test, bound.real)) {
    bound.way = Way::real;
  } else if (property.type == FieldType::int32 && isInteger) {
    bound.way = Way::int32;
    bound.integer = test.integer();
  } else if (property.type == FieldType::int64 && isInteger) {
    bound.way = Way::int64;
    bound.integer = test.integer();
  } else if (property.type == FieldType::text && test.equates() && test.utf8() != nullptr) {
    bound.way = Way::text;
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
