// What the connector's module exports: one factory under two names, found with dlsym.
#pragma once

class GMA_POGroup;
class GMA_PostOffice;
class LOG_Logging;

// Makes a closed, unconfigured post office.
//   unused: not read
//   group:  the host's group, not owned; must outlive the post office
//   name:   the post office's name, also the name of its profile section
//   log:    bound as the process's global log unless one is bound already
//   result: the new post office, the caller's to delete; null when it could not be made
//   status: 11970 then, untouched on success
// Returns 0 always. Can throw scl_exception_base* (a null log, a null name).
using KRX_GetMailAccessObjectFunction = int (*)(const char* unused, GMA_POGroup* group,
                                                const char* name, LOG_Logging& log,
                                                GMA_PostOffice** result, unsigned int& status);

inline constexpr char KRX_MODULE_NAME[] = "KRXWNT.so";
inline constexpr char KRX_FACTORY_NAME[] = "KRX_GetMailAccessObject";

// The stream mask and facility of the connector's log entries.
inline constexpr unsigned int KRX_LOG_ALL = 15;
inline constexpr unsigned int KRX_FACILITY = 11;
