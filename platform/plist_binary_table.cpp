#include "platform/plist_binary_table.h"

#include "platform/plist_fault.h"
#include "platform/plist_limits.h"
#include "platform/property_list_io.h"

namespace qx::detail {
namespace {

constexpr std::string_view kMagicOfAll = "bplist";

[[noreturn]] void failUnsupported(std::size_t at, std::string reason) {
  throw PlistFault{PropertyListErrorCode::unsupported, std::move(reason), at};
}

}  // namespace

bool looksLikeBinaryPlist(std::string_view bytes) { return bytes.starts_with(kMagicOfAll); }

void PlistTable::fail(std::size_t at, std::string reason) {
  throw PlistFault{PropertyListErrorCode::malformed, std::move(reason), at};
}

PlistTable::PlistTable(std::string_view bytes)
    : bytes_(reinterpret_cast<const unsigned char*>(bytes.data())) {
  if (bytes.size() < kPlistMagic.size()) fail(bytes.size(), "the header is cut off");
  if (!bytes.starts_with(kPlistMagic)) {
    failUnsupported(kMagicOfAll.size(), "this version of the binary form is not read");
  }
  if (bytes.size() < kPlistMagic.size() + kPlistTrailerSize) {
    fail(bytes.size(), "the list is too short for a trailer");
  }
  trailer_ = bytes.size() - kPlistTrailerSize;
  offsetWidth_ = bytes_[trailer_ + 6];
  referenceWidth_ = bytes_[trailer_ + 7];
  objectCount_ = bigEndian(bytes_ + trailer_ + 8, 8);
  root_ = bigEndian(bytes_ + trailer_ + 16, 8);
  table_ = bigEndian(bytes_ + trailer_ + 24, 8);
  if (offsetWidth_ < 1 || offsetWidth_ > 8) fail(trailer_ + 6, "offsets are not 1 to 8 bytes wide");
  if (referenceWidth_ < 1 || referenceWidth_ > 8) {
    fail(trailer_ + 7, "references are not 1 to 8 bytes wide");
  }
  if (table_ <= kPlistMagic.size() || table_ > trailer_) {
    fail(trailer_ + 24, "the table of offsets is not within the list");
  }
  const std::uint64_t room = (trailer_ - table_) / offsetWidth_;
  if (objectCount_ == 0 || objectCount_ != room || room * offsetWidth_ != trailer_ - table_) {
    fail(trailer_ + 8, "the number of objects is not that of the table of offsets");
  }
  if (root_ >= objectCount_) fail(trailer_ + 16, "the root is none of the objects");
  if (objectCount_ > kMaxPlistObjects) failUnsupported(trailer_ + 8, "there are too many objects");
  unitWidths_[kPlistData] = unitWidths_[kPlistAscii] = 1;
  unitWidths_[kPlistUtf16] = 2;
  unitWidths_[kPlistArray] = referenceWidth_;
  unitWidths_[kPlistDictionary] = 2 * referenceWidth_;
}

void PlistTable::readLongCount(PlistRecord& r) const {
  if (unitWidths_[r.kind()] == 0) return;
  const std::size_t left = table_ - r.at - 1;
  if (left == 0 || r.bytes[0] >> 4 != kPlistInteger) fail(r.at, "the size of an object is missing");
  const unsigned power = r.bytes[0] & 15U;
  if (power > 3) fail(r.at, "the size of an object is wider than 8 bytes");
  const std::size_t width = std::size_t{1} << power;
  if (left - 1 < width) fail(r.at, "the size of an object is cut off");
  r.count = bigEndian(r.bytes + 1, width);
  r.bytes += 1 + width;
}

std::uint64_t PlistTable::failWithoutSize(const PlistRecord& r) {
  if (r.kind() == kPlistInteger) fail(r.at, "an integer is wider than 16 bytes");
  if (r.kind() == kPlistUid) {
    failUnsupported(r.at, "the identifiers of keyed archives are no values of property lists");
  }
  if (r.kind() == kPlistSet) failUnsupported(r.at, "a set is no value of a property list");
  failUnsupported(r.at, "an object is of a kind that is not known");
}

void PlistTable::failEnd(const PlistRecord& r) {
  fail(r.at, "an object reaches beyond the objects");
}

void PlistTable::failReference(const unsigned char* from) const {
  fail(static_cast<std::size_t>(from - bytes_), "a reference names no object");
}

}  // namespace qx::detail
