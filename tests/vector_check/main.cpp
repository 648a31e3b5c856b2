// vector_check FILE...: runs files of conformance cases against the library; without arguments,
// those kept beside it. Each difference is printed with its place; the last line is "N passed, N
// failed".

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/vector_check/driver.h"

namespace vector_check {

Outcome compare(const json& expect, json actual) {
  return {isSame(expect, actual), std::move(actual)};
}

namespace {

struct Counts {
  std::size_t passed = 0;
  std::size_t failed = 0;
};

// The outcome of a call that raised.
Outcome raised(const json& expect, const char* name, const std::string& reason) {
  const json actual = {{"raise", name}, {"reason", reason}};
  if (!expect.is_object()) return {false, actual};
  if (expect.contains("fail")) return {true, actual};
  const bool named = expect.contains("raise") && expect["raise"] == name;
  return {named && (!expect.contains("reason") || expect["reason"] == reason), actual};
}

Outcome run(Operation operation, const json& args, const json& expect) {
  try {
    return operation(args, expect);
  } catch (const qx::Exception& e) {
    return raised(expect, e.name(), e.reason());
  } catch (const std::exception& e) {
    return {false, {{"the driver", e.what()}}};
  }
}

std::string text(const json& j) { return j.dump(-1, ' ', true, json::error_handler_t::replace); }

void report(const std::string& place, const json& args, const json& expect, const json& actual) {
  std::printf("%s\n  arguments %s\n  expected  %s\n  got       %s\n", place.c_str(),
              text(args).c_str(), text(expect).c_str(), text(actual).c_str());
}

bool runLine(const Operations& operations, const std::string& line, const std::string& place) {
  const json test = json::parse(line, nullptr, false);
  if (!test.is_object() || !test.contains("op") || !test["op"].is_string() ||
      !test.contains("args") || !test.contains("expect")) {
    std::printf("%s: not a case\n", place.c_str());
    return false;
  }
  const auto name = test["op"].get<std::string>();
  const auto found = operations.find(name);
  if (found == operations.end()) {
    std::printf("%s: the operation %s is not known\n", place.c_str(), name.c_str());
    return false;
  }
  const Outcome outcome = run(found->second, test["args"], test["expect"]);
  if (!outcome.passed) report(place + " " + name, test["args"], test["expect"], outcome.actual);
  return outcome.passed;
}

void runFile(const Operations& operations, const std::string& path, Counts& counts) {
  std::ifstream file(path);
  if (!file) {
    std::printf("%s: can not be read\n", path.c_str());
    ++counts.failed;
    return;
  }
  std::string line;
  for (std::size_t number = 1; std::getline(file, line); ++number) {
    if (line.empty()) continue;
    ++(runLine(operations, line, path + ":" + std::to_string(number)) ? counts.passed
                                                                      : counts.failed);
  }
}

std::vector<std::string> keptFiles() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(QX_VECTORS_DIR)) {
    if (entry.path().extension() == ".jsonl") files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

int check(std::vector<std::string> files) {
  if (files.empty()) files = keptFiles();
  const Operations operations = allOperations();
  Counts counts;
  for (const std::string& file : files) runFile(operations, file, counts);
  std::printf("%zu passed, %zu failed\n", counts.passed, counts.failed);
  return counts.failed == 0 && counts.passed != 0 ? 0 : 1;
}

}  // namespace
}  // namespace vector_check

int main(int argc, char** argv) { return vector_check::check({argv + 1, argv + argc}); }
