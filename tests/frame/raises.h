#pragma once

// For tests of raises, whose reasons are part of the promise.

#include <exception>
#include <string>
#include <utility>

#include <QXFoundation/exception.h>

namespace qx {

// The reason of the exception of class E that `f` raises; otherwise what happened instead.
template <class E, class F>
std::string reasonOf(F&& f) {
  try {
    std::forward<F>(f)();
  } catch (const E& e) {
    return e.reason();
  } catch (const std::exception& e) {
    return std::string("another exception: ") + e.what();
  }
  return "nothing was raised";
}

}  // namespace qx
