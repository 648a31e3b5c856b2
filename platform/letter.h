#pragma once

// How messages stand in a port's queue.

#include <cstdint>
#include <utility>

#include <QXFoundation/array.h>
#include <QXFoundation/port.h>

namespace qx::detail {

// The head of a message in the queue.
struct Letter {
  enum class Kind : std::uint8_t {
    message,  // a MessageLetter, which the port owns
    memory,   // stands before the sender's own memory, and is part of it
  };

  explicit Letter(Kind k) : kind(k) {}

  Letter* next = nullptr;
  Kind kind;
};

// What a PortMessage held when it was sent. It does not hold the port that it waits in.
struct MessageLetter : Letter {
  MessageLetter(Ref<Array> c, Ref<Port> r)
      : Letter(Kind::message), components(std::move(c)), receivePort(std::move(r)) {}

  Ref<Array> components;
  Ref<Port> receivePort;
};

// A letter made by the sender at the head of its own memory: the message that the delegate gets has
// no receive port, and one component of 8 bytes, the address of what stands behind the letter. The
// delegate frees that memory, whole. Nobody does where it is never delivered.
struct MemoryLetter : Letter {
  MemoryLetter() : Letter(Kind::memory) {}
  void* contents() { return this + 1; }
};

// Hands a letter to the port. False when the thread of its run loop has ended: then the letter is
// the caller's still. Any thread; takes no lock.
bool sendLetter(const Port& port, Letter& letter) noexcept;

}  // namespace qx::detail
