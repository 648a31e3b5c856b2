// QXDataCursor: reads bytes from front to back, as strings of a given length and as lines.
//
//     auto cursor = qx::QXDataCursor::initWithFile("notes.txt");
//     while (auto line = cursor->readLine()) use(line->utf8());
//
// Every byte is one character (ISO Latin 1). For lines of UTF-8 text take the characters' codes as
// bytes again.
#pragma once

#include <cstddef>
#include <string>

#include <QXFoundation/data.h>
#include <QXFoundation/object.h>
#include <QXFoundation/string.h>

namespace qx {

// A place in a block of bytes, which moves forward only. The class is "QXDataCursor". Belongs to
// one thread at a time.
class QX_EXPORT QXDataCursor : public Object {
 public:
  // Over these bytes, which the cursor keeps alive; of mutable data over a copy. Nil counts as no
  // bytes.
  static Ref<QXDataCursor> initWithData(In<Data> data);
  // Over the content of a regular file, read whole now: what happens to the file later does not
  // matter. A file that can not be read counts as no bytes.
  static Ref<QXDataCursor> initWithFile(StringArg path);

  // The platform's code of the encoding in which the bytes are read: always ISO Latin 1.
  std::size_t stringEncoding() const { return 5; }
  bool hasAvailableData() const { return current_ != end_; }

  // The next `length` bytes; "" for 0. Where there are fewer this raises RangeException ("Attempted
  // to read past to end of data.") and the cursor stays where it is.
  Ref<String> readStringOfLength(std::size_t length);
  // The bytes up to the next line feed, carriage return, or both in this order, which are skipped;
  // or up to the end. Nil at the end. A line ending at the very end begins no further line.
  Ref<String> readLine();

  // Inside the library.
  QXDataCursor(detail::Passkey, Ref<Data> data);
  QXDataCursor(detail::Passkey, std::string bytes);

 protected:
  ~QXDataCursor() override;

 private:
  void start(const char* bytes, std::size_t length);
  const char* endOfLine();

  Ref<Data> data_;     // what keeps the bytes: this,
  std::string bytes_;  // or this for those of a file
  const char* current_ = nullptr;
  const char* end_ = nullptr;
  // The next of each at or behind the place, or the end; looked for once each, so that a text
  // without one of them is not searched for it at every line.
  const char* nextLineFeed_ = nullptr;
  const char* nextReturn_ = nullptr;
};

QX_EXPORT const Class& classObject(detail::Type<QXDataCursor>);

}  // namespace qx
