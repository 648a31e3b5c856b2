// Files of the command line, as the library addresses them.
#pragma once

#include <string>

#include <QXFoundation/error.h>
#include <QXFoundation/url.h>

#include "tools/qx/failure.h"

namespace qxtool {

// The URL of a path of any bytes. A Failure for the empty path.
qx::Ref<qx::URL> urlOfFile(const std::string& path);

// Whether the error is the system's for an attribute that is not there.
bool tellsOfNoAttribute(const qx::Ref<qx::Error>& error);

// "cannot DO WHAT of PATH: REASON", such as "cannot read the tags of f: No such file or directory".
Failure attributeFailure(const std::string& doing, const std::string& path,
                         const qx::Ref<qx::Error>& error);

}  // namespace qxtool
