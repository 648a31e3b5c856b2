#pragma once

// One call in flight.

#include <cstddef>
#include <cstdint>

#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

#include "platform/letter.h"
#include "platform/send_list.h"

namespace qx::detail {

// Its values are counted references, which nobody gives up: the record goes as plain memory.
struct ThreadMessageRecord {
  Selector selector;
  PropertyValue target;
  PropertyValue arguments[2];
  std::int32_t argumentCount = 0;
  // The target's class as the sender saw it, so that the receiver need not look: the line of the
  // cache in which an object's class stands is the one in which senders count references.
  std::uint16_t classIndex = 0;
  std::uint16_t place = 0;  // among the records that were allocated with it
};

// One piece of memory, a line of the cache: the letter that takes the record through a port, and
// announces what stands behind itself, and the record.
struct ThreadMessageMemory {
  MemoryLetter letter;
  ThreadMessageRecord record;
};
static_assert(offsetof(ThreadMessageMemory, record) == sizeof(MemoryLetter));
static_assert(sizeof(ThreadMessageMemory) == kCacheLine);

// Zeroed; null when there is no memory. Each thread takes its records from a sheet of its own, so
// that one in some sixty asks for memory.
ThreadMessageMemory* allocateThreadMessage() noexcept;
// Gives back the memory in which the record stands, and nothing that it refers to. Any thread. A
// sheet is freed with the last of its records.
void freeThreadMessage(ThreadMessageRecord* record) noexcept;

}  // namespace qx::detail
