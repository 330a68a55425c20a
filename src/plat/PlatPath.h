// From the system's form of a path (drive, backslash, server and share) to the file system's.
// "C:" is "/"; further drives come from KRX_DRIVES ("D:=/mnt/d;E:=/data"); "\\server\share\" is
// $KRX_UNC_ROOT/server/share/ (default /mnt/unc); the current drive is "C:", so "C:x" is "x" in the
// current directory. "/" and "\" are the same separator; drive letters have no case.
#pragma once

#include <string>
#include <string_view>

namespace plat {

// "C:\spool\in\x.RCP" -> "/spool/in/x.RCP"; "rel\x" -> "rel/x". An empty text, which no call of
// the file system accepts, for an unknown drive, a server or share named "." or "..", and a path
// with a NUL in it.
std::string toNative(std::string_view path);
// "/spool/in" -> "\spool\in".
std::string fromNative(std::string_view path);
std::string currentDrive();  // "C:"
// "\dir\", ends in a backslash; empty when the directory has no name any more (it was removed), so
// that no relative path is taken for one at the root.
std::string currentDirectory();

}  // namespace plat
