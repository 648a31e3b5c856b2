#pragma once

// The driver of conformance cases: which operations there are, and what an operation gives.

#include <map>
#include <string>

#include "tests/vector_check/values.h"

namespace vector_check {

// What came of a case: whether it is what was expected, and how it reads.
struct Outcome {
  bool passed = false;
  json actual;
};

// Runs one case against the library. What it throws is a failure of the call, which some cases
// expect.
using Operation = Outcome (*)(const json& args, const json& expect);
using Operations = std::map<std::string, Operation>;

// The usual comparison: the actual result must be the expected one, number kinds included.
Outcome compare(const json& expect, json actual);

// One function for each family of operations; operations.cpp lists them.
void addQualifierOperations(Operations& operations);
void addValueOperations(Operations& operations);
void addPreferencesOperations(Operations& operations);
void addFunctionalOperations(Operations& operations);
void addCollectionOperations(Operations& operations);
void addStringOperations(Operations& operations);
void addTreeOperations(Operations& operations);
void addFractionOperations(Operations& operations);
void addDateOperations(Operations& operations);
void addFormattingOperations(Operations& operations);
void addOrderingOperations(Operations& operations);
void addFileOperations(Operations& operations);
void addColorTagOperations(Operations& operations);
void addUrlOperations(Operations& operations);

Operations allOperations();

}  // namespace vector_check
