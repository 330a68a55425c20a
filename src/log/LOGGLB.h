// The process-wide global log: bound once, never replaced, never deleted by the library. The host
// binds its log before any thread of its own writes through it.
#pragma once

class LOG_Logging;
class PFA_Profile;
class SCL_StringRef;

// The first binding stays. Null is the assertion 1 at LOGGLB. The log must outlive every use of
// the library.
void LOG_setGlobalLog(LOG_Logging* log);
// "Global log has not been initialised." when none is bound.
LOG_Logging& LOG_globalLog();
bool LOG_hasGlobalLog() noexcept;
// When no log is bound: makes one, which lives until the process ends, binds and configures it. Any
// status there (also one bad stream among good ones) destroys it and clears the binding.
void LOG_createGlobalLog(PFA_Profile& profile, const SCL_StringRef& section, unsigned int& status);
