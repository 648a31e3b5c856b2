#pragma once

// The sort written down step by step over plain numbers, with a comparison of its own: what the
// library's result is held against.

#include <cstddef>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <QXFoundation/QXFoundation.h>

namespace reference {

// Thrown where the sort must raise.
struct Unsupported {};

struct Mode {
  const char* selector;
  bool descending;
  bool ignoringCase;
};
inline constexpr Mode kModes[] = {{"compareAscending:", false, false},
                                  {"compareDescending:", true, false},
                                  {"compareCaseInsensitiveAscending:", false, true},
                                  {"compareCaseInsensitiveDescending:", true, true}};

inline bool hasComparison(const qx::PropertyValue& v, bool ignoringCase) {
  return v.isString() || (!ignoringCase && (v.isNumber() || v.isDate()));
}

template <class T>
int order(const T& a, const T& b) {
  return a < b ? -1 : b < a ? 1 : 0;
}

inline int orderOfReals(double a, double b) {
  const bool aIsNaN = a != a;
  const bool bIsNaN = b != b;
  return aIsNaN || bIsNaN ? order(bIsNaN, aIsNaN) : order(a, b);
}

inline int orderOf(const qx::PropertyValue& a, const qx::PropertyValue& b, bool ignoringCase) {
  if (a.isString() && b.isString()) {
    const auto left = a.as<qx::String>();
    const auto right = b.as<qx::String>();
    return ignoringCase
               ? order(left->caseFoldedString()->utf16(), right->caseFoldedString()->utf16())
               : order(left->utf16(), right->utf16());
  }
  if (ignoringCase) throw Unsupported{};
  if (a.isNumber() && b.isNumber()) {
    // Of two integers or two doubles the order is worked out here; numbers of mixed kinds are the
    // value model's.
    if (a.to<std::int64_t>() && b.to<std::int64_t>()) {
      return order(*a.to<std::int64_t>(), *b.to<std::int64_t>());
    }
    const bool areReals = a.as<qx::Number>()->kind() == qx::NumberKind::real &&
                          b.as<qx::Number>()->kind() == qx::NumberKind::real;
    return areReals ? orderOfReals(*a.to<double>(), *b.to<double>())
                    : static_cast<int>(a.compare(b));
  }
  if (a.isDate() && b.isDate()) {
    return orderOfReals(a.as<qx::Date>()->timeIntervalSince1970(),
                        b.as<qx::Date>()->timeIntervalSince1970());
  }
  throw Unsupported{};
}

// The mode's operation, the left value being the receiver.
inline int perform(const Mode& mode, const qx::PropertyValue& left,
                   const qx::PropertyValue& right) {
  if (!hasComparison(right, mode.ignoringCase)) return 0;
  if (!hasComparison(left, mode.ignoringCase)) throw Unsupported{};
  const int r = orderOf(left, right, mode.ignoringCase);
  return mode.descending ? -r : r;
}

// vx belongs to the element behind, vy to the one before.
inline int compareInSort(const Mode& mode, const qx::PropertyValue& vx,
                         const qx::PropertyValue& vy) {
  const qx::PropertyValue n = qx::null;
  if (vx.isNil() && vy.isNil()) return perform(mode, n, nullptr);
  if (vx.isNil()) return -perform(mode, n, vy);
  if (vy.isNil()) return -perform(mode, n, vx);
  const int r = perform(mode, vx, vy);
  return vx.isNull() && !vy.isNull() ? -r : r;
}

// The places of the elements after the sort, or nothing where it must raise. `keys` are the keys of
// the whole array.
inline std::optional<std::vector<std::size_t>> sorted(const std::vector<qx::PropertyValue>& keys,
                                                      const Mode& mode, std::size_t f,
                                                      std::size_t n) {
  std::vector<std::size_t> places(keys.size());
  std::iota(places.begin(), places.end(), std::size_t{0});
  if (n == 0) return places;
  std::size_t h = 1;
  do h = 3 * h + 1;
  while (h <= n);
  std::size_t g = 0;
  try {
    do {
      g = h;
      h = g / 3;
      if (h >= n) continue;
      for (std::size_t i = h; i < n; ++i) {
        for (std::size_t j = f + i - h;; j -= h) {
          const std::size_t x = places[j + h];
          const std::size_t y = places[j];
          if (compareInSort(mode, keys[x], keys[y]) >= 0) break;
          places[j + h] = y;
          places[j] = x;
          if (j < f + h) break;
        }
      }
    } while (g >= 9);
  } catch (const Unsupported&) {
    return std::nullopt;
  }
  return places;
}

}  // namespace reference
