// The registry: typed values under key paths, with shortcuts for the machine's software key and
// for a service's parameters. Root numbers: 0 classes root, 1 current user, 2 local machine,
// 3 users. A key path is `base` and `sub` joined with "\"; an empty `sub` leaves the base alone.
// 2111: the key to be read does not exist, 2110: the key to be written cannot be made.
// Nothing happens when the status is nonzero on entry; outputs are set on success only.
#pragma once

#include <cstdint>

#include "scl/SCLSTRNG.h"

class SCL_StringTable;

namespace gen {

// A string or an expandable string, unexpanded. 2113 no such value, or more than 512 bytes with its
// terminating zero; 2116 of another type.
void regReadString(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                   const SCL_StringRef& name, SCL_String& value, unsigned int& status);
// 2115 the value cannot be written.
void regWriteString(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                    const SCL_StringRef& name, const SCL_StringRef& text, unsigned int& status);
// A number, or a string of at most 32 bytes whose leading digits are taken as the C library's atoi
// does (clamped to 32 bits). 2113; 2117 of another type.
void regReadNumber(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                   const SCL_StringRef& name, std::uint32_t& value, unsigned int& status);
// 2115 the value cannot be written.
void regWriteNumber(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                    const SCL_StringRef& name, std::uint32_t value, unsigned int& status);
// The names of all subkeys, in enumeration order, in place of what the table held. 2114 it failed.
void regEnumKeys(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                 SCL_StringTable& names, unsigned int& status);
// The subkey `key` with all that is beneath it. 2112 there is none.
void regDeleteKey(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                  const SCL_StringRef& key, unsigned int& status);
// 2118 there is none.
void regDeleteValue(int root, const SCL_StringRef& base, const SCL_StringRef& sub,
                    const SCL_StringRef& name, unsigned int& status);
// Every value (name and data at most 256 bytes each, else 2113) and, when recursive, every subkey.
// A target inside the source is refused (2110). What was copied before a failure stays.
void regCopyKey(int sourceRoot, const SCL_StringRef& source, int targetRoot,
                const SCL_StringRef& target, bool recursive, unsigned int& status);

// Root 2, base "SOFTWARE", sub `path`.
void regReadSoftwareString(const SCL_StringRef& path, const SCL_StringRef& name, SCL_String& value,
                           unsigned int& status);
void regWriteSoftwareString(const SCL_StringRef& path, const SCL_StringRef& name,
                            const SCL_StringRef& text, unsigned int& status);
void regReadSoftwareNumber(const SCL_StringRef& path, const SCL_StringRef& name,
                           std::uint32_t& value, unsigned int& status);
void regWriteSoftwareNumber(const SCL_StringRef& path, const SCL_StringRef& name,
                            std::uint32_t value, unsigned int& status);
void regDeleteSoftwareValue(const SCL_StringRef& path, const SCL_StringRef& name,
                            unsigned int& status);

// Root 2, base "SYSTEM\CurrentControlSet\Services", sub service "\Parameters".
void regReadServiceString(const SCL_StringRef& service, const SCL_StringRef& name,
                          SCL_String& value, unsigned int& status);
void regWriteServiceString(const SCL_StringRef& service, const SCL_StringRef& name,
                           const SCL_StringRef& text, unsigned int& status);
void regReadServiceNumber(const SCL_StringRef& service, const SCL_StringRef& name,
                          std::uint32_t& value, unsigned int& status);
void regWriteServiceNumber(const SCL_StringRef& service, const SCL_StringRef& name,
                           std::uint32_t value, unsigned int& status);
void regDeleteServiceValue(const SCL_StringRef& service, const SCL_StringRef& name,
                           unsigned int& status);

}  // namespace gen
