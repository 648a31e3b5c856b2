#include "tests/vector_check/driver.h"

namespace vector_check {

Operations allOperations() {
  Operations operations;
  addQualifierOperations(operations);
  addValueOperations(operations);
  addPreferencesOperations(operations);
  addFunctionalOperations(operations);
  addCollectionOperations(operations);
  addStringOperations(operations);
  addTreeOperations(operations);
  addFractionOperations(operations);
  addDateOperations(operations);
  addFormattingOperations(operations);
  addOrderingOperations(operations);
  addFileOperations(operations);
  addColorTagOperations(operations);
  addUrlOperations(operations);
  return operations;
}

}  // namespace vector_check
