#pragma once

// One call in flight.

#include <cstddef>
#include <cstdint>

#include <QXFoundation/property_value.h>
#include <QXFoundation/selector.h>

#include "platform/letter.h"

namespace qx::detail {

// Its values are counted references, which nobody gives up: the record goes as plain memory.
struct ThreadMessageRecord {
  Selector selector;
  PropertyValue target;
  PropertyValue arguments[2];
  std::int32_t argumentCount = 0;
};

// One piece of memory: the letter that takes the record through a port, and announces what stands
// behind itself, and the record.
struct ThreadMessageMemory {
  MemoryLetter letter;
  ThreadMessageRecord record;
};
static_assert(offsetof(ThreadMessageMemory, record) == sizeof(MemoryLetter));

// Zeroed; null when there is no memory.
ThreadMessageMemory* allocateThreadMessage() noexcept;
// Gives back the memory in which the record stands, and nothing that it refers to.
void freeThreadMessage(ThreadMessageRecord* record) noexcept;

}  // namespace qx::detail
