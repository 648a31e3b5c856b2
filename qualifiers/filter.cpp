#include <QXFoundation/filter.h>

#include "frame/array_storage.h"
#include "qualifiers/program_run.h"

namespace qx {
Ref<MutableArray> filteredArrayUsingQualifier(In<Array> array, In<QXQualifier> qualifier) {
  if (!array) return nullptr;
  auto hits = MutableArray::init();
  if (!qualifier) return hits;
  const Ref<Array> held(array.get());
  const detail::Program program(*qualifier);
  detail::ProgramRun(program).select(*array, *hits);
  return hits;
}

namespace detail {

BoundToClass::BoundToClass(In<QXQualifier> qualifier, const Class& cls)
    : qualifier_(qualifier.get()) {
  if (qualifier) program_ = std::make_shared<const ClassProgram>(*qualifier, cls);
}
bool BoundToClass::accepts(const Object& object) const {
  return program_ != nullptr && program_->accepts(object);
}
bool BoundToClass::acceptsNil() const {
  return qualifier_ != nullptr && qualifier_->evaluateWithObject(nullptr);
}

BoundToStruct::BoundToStruct(In<QXQualifier> qualifier, const Class& cls) {
  if (qualifier) program_ = std::make_shared<const StructProgram>(*qualifier, cls);
}
bool BoundToStruct::accepts(const Subject& record) const {
  return program_ != nullptr && program_->accepts(record);
}

}  // namespace detail
}  // namespace qx
