#pragma once

// Paths as texts: bytes with slashes between their components. Nothing here looks at the file
// system; only a tilde asks for a user's home.

#include <string>
#include <string_view>
#include <vector>

#include <QXFoundation/string_arg.h>

namespace qx::detail {

// The bytes that a parameter names: those that were given, also where they are no UTF-8, or the
// UTF-8 of a String.
std::string pathBytes(StringArg path);

// "~" and "~/..." with the user's home, "~name" and "~name/..." with that of the named user. The
// path as it is where there is no tilde, or no such home.
std::string expandedTilde(std::string path);

// With the tilde expanded, doubled slashes made one, "." removed, ".." removed together with the
// component before it, and no slash at the end. ".." at the root is nothing; at the start of a
// relative path it stays. Of a relative path that comes to nothing "." remains; the empty path
// stays empty.
std::string standardizedPath(std::string path);

// "/a/b" gives "/", "a", "b". A slash at the end is a component of its own, "/".
std::vector<std::string_view> componentsOfPath(std::string_view path);

// Adds a component behind one slash.
std::string joinedPath(std::string_view folder, std::string_view component);

// `$TMPDIR` where that is an absolute path, else "/tmp".
std::string temporaryFolder();

}  // namespace qx::detail
