// Walking and searching trees of 1,000,000 nodes. Times in nanoseconds for each visit.

#include <QXFoundation/QXFoundation.h>

#include "bench/ways.h"

namespace bench {
namespace {

class Node : public qx::QXTree {
 public:
  void visit() { ++visits; }
  static std::size_t visits;
};
std::size_t Node::visits = 0;
void describe(qx::ClassBuilder<Node>& c) {
  c.name("BenchNode").inherits<qx::QXTree>().operation("visit", &Node::visit);
}

constexpr std::size_t kNodes = 1'000'000;

// Level by level, `width` children to a node.
qx::Ref<Node> makeTree(std::size_t width) {
  std::vector<qx::Ref<Node>> nodes{qx::make<Node>()};
  for (std::size_t i = 1; i < kNodes; ++i) {
    nodes.push_back(qx::make<Node>());
    nodes[(i - 1) / width]->addChild(nodes.back());
  }
  return nodes.front();
}

void traverse(benchmark::State& state) {
  const auto root = makeTree(static_cast<std::size_t>(state.range(0)));
  Node::visits = 0;
  root->traversePostorder("visit");
  require(Node::visits == kNodes, "the number of visits");
  const qx::PropertyValue absent = "absent";
  compareWays(state,
              {{"postorder", [&] { root->traversePostorder("visit"); }},
               {"preorder", [&] { root->traversePreorder("visit"); }},
               {"find", [&] { benchmark::DoNotOptimize(root->findItem(absent, true)); }}},
              static_cast<double>(kNodes), 7);
  root->takeApart();
}
BENCHMARK(traverse)->ArgName("width")->Iterations(1)->Arg(1)->Arg(2)->Arg(10)->Arg(1000);

}  // namespace
}  // namespace bench
