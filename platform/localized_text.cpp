#include <atomic>

#include <QXFoundation/localized_text.h>

namespace qx {
namespace {

std::atomic<Translation> installed{nullptr};

}  // namespace

void setTranslation(Translation translation) {
  installed.store(translation, std::memory_order_release);
}

std::string localizedText(const std::string& text) {
  const Translation translation = installed.load(std::memory_order_acquire);
  return translation != nullptr ? translation(text) : text;
}

}  // namespace qx
