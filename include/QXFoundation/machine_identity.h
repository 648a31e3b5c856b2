// Which machine this is.
//
//     qx::QXUniqueMachineIdentifier()->utf8();   // "00:1a:2b:3c:4d:5e"
//     qx::QXHostName()->utf8();                  // "workshop"
//
// Both are learnt by the first call and stay for the life of the process: interfaces and names that
// change later are not seen. Thread-safe.
#pragma once

#include <QXFoundation/dictionary.h>
#include <QXFoundation/string.h>

namespace qx {

// What stands for the identifier of a machine without any hardware address.
inline constexpr char kNoUniqueMachineIdentifier[] = "no unique machine identifier found";

// The hardware address of the interface "zen0", else of the interface that comes first by name
// among those that have one: bytes as two lower-case hexadecimal digits each, with colons between.
// Raises GenericException where the system does not tell its interfaces, and asks again next time.
QX_EXPORT Ref<String> QXUniqueMachineIdentifier();

// The system's name for this machine, cut to 256 bytes; "localhost" where it gives none. Nil, and
// asked for again next time, where it is not ASCII.
QX_EXPORT Ref<String> QXHostName();

}  // namespace qx
