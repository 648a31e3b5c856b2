#pragma once

// Lock files as processes leave them.

#include <sys/types.h>

#include <string>

#include <QXFoundation/dictionary.h>
#include <QXFoundation/machine_identity.h>
#include <QXFoundation/path.h>
#include <QXFoundation/property_list.h>

#include "tests/support/temporary_folder.h"

namespace test_support {

inline void writeRecord(const std::string& lockPath, const qx::PropertyValue& record) {
  const auto data =
      qx::PropertyListSerialization::dataWithPropertyList(record, qx::PropertyListFormat::xml);
  writeBytes(lockPath, data->view());
}

// The record of this process, with another process's number.
inline qx::Ref<qx::Dictionary> recordOfProcess(pid_t process) {
  return qx::dict({{"hostIdentifier", qx::QXUniqueMachineIdentifier()},
                   {"hostName", qx::QXHostName()},
                   {"userName", qx::NSUserName()},
                   {"processNumber", process}});
}

}  // namespace test_support
