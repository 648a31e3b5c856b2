// Paths as texts.
//
//     auto path = qx::stringByStandardizingPath(qx::String::from("~/data//./report.txt"));
//     auto file = qx::stringByAppendingPathComponent(folder, "report.txt");
//
// These operations look at the text alone, not at the file system: nothing needs to exist, and
// symbolic links are not followed. Each can be performed by selector too. A nil receiver gives nil.
// Thread-safe, while no thread changes the environment.
#pragma once

#include <QXFoundation/array.h>
#include <QXFoundation/string.h>

namespace qx {

// "~" and "~/..." with the user's home ($HOME, else what the user's account says), "~name/..." with
// that of the named user. The path as it is where there is no tilde at its start, or no such home.
QX_EXPORT Ref<String> stringByExpandingTildeInPath(In<String> path);

// With the tilde expanded, doubled slashes made one, "." removed, ".." removed together with the
// component before it, and no slash at the end. A relative path stays relative: ".." at its start
// stays, and "." is what remains of one that comes to nothing.
QX_EXPORT Ref<String> stringByStandardizingPath(In<String> path);

// The components as strings: "/a/b" gives "/", "a", "b". A slash at the end is one of its own, "/".
QX_EXPORT Ref<Array> pathComponents(In<String> path);

// The components joined by slashes: what pathComponents took apart.
QX_EXPORT Ref<String> qxPathWithComponents(In<Array> components);

// The path with one component, or several, added behind one slash. Nil as component raises
// InvalidArgumentException.
QX_EXPORT Ref<String> stringByAppendingPathComponent(In<String> path, StringArg component);

// The folder for temporary files: `$TMPDIR` where that is an absolute path, else "/tmp".
QX_EXPORT Ref<String> NSTemporaryDirectory();

// The login name of the user whose process this is; the user's number where there is no account.
QX_EXPORT Ref<String> NSUserName();

}  // namespace qx
