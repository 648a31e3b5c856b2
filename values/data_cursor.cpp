#include <algorithm>
#include <cstring>
#include <utility>

#include <QXFoundation/data_cursor.h>
#include <QXFoundation/exception.h>

#include "frame/library_class.h"
#include "platform/atomic_file.h"

namespace qx {

namespace {

constexpr char kLineFeed = '\n';
constexpr char kReturn = '\r';

// Moves `found`, the first such byte at or behind some earlier place, on to the first at or behind
// `from`.
const char* moveOn(const char*& found, char wanted, const char* from, const char* end) {
  if (found < from) {
    const void* next = std::memchr(from, wanted, static_cast<std::size_t>(end - from));
    found = next != nullptr ? static_cast<const char*>(next) : end;
  }
  return found;
}

}  // namespace

QXDataCursor::QXDataCursor(detail::Passkey, Ref<Data> data) : data_(std::move(data)) {
  if (data_ != nullptr) start(data_->view().data(), data_->length());
}
QXDataCursor::QXDataCursor(detail::Passkey, std::string bytes) : bytes_(std::move(bytes)) {
  start(bytes_.data(), bytes_.size());
}
QXDataCursor::~QXDataCursor() = default;

void QXDataCursor::start(const char* bytes, std::size_t length) {
  current_ = bytes;
  end_ = bytes + length;
}

Ref<QXDataCursor> QXDataCursor::initWithData(In<Data> data) {
  return make<QXDataCursor>(detail::Passkey{},
                            data ? PropertyValue(data->copy()).as<Data>() : nullptr);
}

Ref<QXDataCursor> QXDataCursor::initWithFile(StringArg path) {
  std::string bytes;
  if (path.isNil() || detail::readFile(path.utf8(), bytes) != 0) return initWithData(nullptr);
  return make<QXDataCursor>(detail::Passkey{}, std::move(bytes));
}

Ref<String> QXDataCursor::readStringOfLength(std::size_t length) {
  if (length > static_cast<std::size_t>(end_ - current_)) {
    throw RangeException("Attempted to read past to end of data.");
  }
  auto string = String::fromLatin1({current_, length});
  current_ += length;
  return string;
}

const char* QXDataCursor::endOfLine() {
  return std::min(moveOn(nextLineFeed_, kLineFeed, current_, end_),
                  moveOn(nextReturn_, kReturn, current_, end_));
}

Ref<String> QXDataCursor::readLine() {
  if (!hasAvailableData()) return nullptr;
  auto line = readStringOfLength(static_cast<std::size_t>(endOfLine() - current_));
  if (!hasAvailableData()) return line;
  const char ending = *current_++;
  if (ending == kReturn && hasAvailableData() && *current_ == kLineFeed) ++current_;
  return line;
}

void describe(ClassBuilder<QXDataCursor>& c) {
  c.name("QXDataCursor").inherits<Object>();
  c.operation("stringEncoding", &QXDataCursor::stringEncoding);
  c.operation("hasAvailableData", &QXDataCursor::hasAvailableData);
  c.operation("readStringOfLength:", &QXDataCursor::readStringOfLength);
  c.operation("readLine", &QXDataCursor::readLine);
}

const Class& classObject(detail::Type<QXDataCursor>) {
  return detail::buildLibraryClass<QXDataCursor>();
}

}  // namespace qx
