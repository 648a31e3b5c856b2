#include "tools/qx/sorting.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include <QXFoundation/exception.h>
#include <QXFoundation/key_order_sorting.h>
#include <QXFoundation/sort_ordering.h>

#include "tools/qx/failure.h"
#include "tools/qx/printable.h"

namespace qxtool {
namespace {

struct Order {
  std::string_view name;
  const char* selector;
};

constexpr Order kOrders[] = {{"ascending", "compareAscending:"},
                             {"descending", "compareDescending:"},
                             {"ci-ascending", "compareCaseInsensitiveAscending:"},
                             {"ci-descending", "compareCaseInsensitiveDescending:"}};

const Order& orderNamed(std::string_view name) {
  const auto* const order =
      std::find_if(std::begin(kOrders), std::end(kOrders),
                   [&](const Order& candidate) { return candidate.name == name; });
  if (order == std::end(kOrders)) {
    throw Failure(
        "--sort: the order is ascending, descending, ci-ascending or ci-descending, not " +
        std::string(name));
  }
  return *order;
}

qx::PropertyValue orderingOf(std::string_view sort) {
  if (!isValidUtf8(sort)) throw Failure("--sort: the key is not UTF-8");
  const std::size_t colon = sort.rfind(':');
  const std::string_view key = sort.substr(0, colon);
  if (key.empty()) throw Failure("--sort: the key is empty");
  const Order& order =
      colon == std::string_view::npos ? kOrders[0] : orderNamed(sort.substr(colon + 1));
  return qx::QXSortOrdering::sortOrderingWithKey(key, qx::Selector::named(order.selector));
}

}  // namespace

qx::Ref<qx::Array> orderingsOf(const std::vector<std::string>& sorts) {
  auto orderings = qx::MutableArray::init();
  for (const std::string& sort : sorts) orderings->addObject(orderingOf(sort));
  return orderings;
}

void sortRecords(qx::MutableArray& records, const qx::Ref<qx::Array>& orderings) {
  try {
    if (orderings->count() == 1) {
      sortUsingKeyOrderArray(records, orderings);
    } else if (orderings->count() > 1) {
      sortStablyUsingOrderings(records, orderings);
    }
  } catch (const qx::InvalidArgumentException&) {
    throw Failure(
        "--sort: there are records whose values have no order: of different kinds, or missing or "
        "null "
        "beside others");
  }
}

}  // namespace qxtool
