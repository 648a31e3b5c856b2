// What names the machine, once it is known. Nanoseconds a question; wanted: at most 20. Beside them
// the system call that tells the host's name.

#include <unistd.h>

#include <string>

#include <QXFoundation/QXFoundation.h>

#include "bench/ways.h"

namespace bench {
namespace {

constexpr int kQuestions = 100'000;

std::string systemName() {
  char name[257] = {};
  return ::gethostname(name, sizeof name - 1) == 0 ? name : "localhost";
}

template <class Ask>
std::function<void()> many(Ask ask) {
  return [ask] {
    for (int i = 0; i < kQuestions; ++i) benchmark::DoNotOptimize(ask());
  };
}

void identity(benchmark::State& state) {
  require(qx::QXHostName()->utf8() == systemName(), "host name");
  require(qx::QXUniqueMachineIdentifier()->length() > 0, "identifier");
  compareWays(state,
              {{"identifier", many([] { return qx::QXUniqueMachineIdentifier(); })},
               {"host_name", many([] { return qx::QXHostName(); })},
               {"gethostname", many([] { return systemName(); })}},
              kQuestions);
}

BENCHMARK(identity)->Iterations(1);

}  // namespace
}  // namespace bench
