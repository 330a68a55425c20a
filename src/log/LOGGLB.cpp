// The binding of the global log.
#include "log/LOGGLB.h"

#include <atomic>
#include <memory>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "log/LOGLOG.h"

namespace {

std::atomic<LOG_Logging*> globalLog{nullptr};

// Clears the binding again unless it is kept, also when an assertion passes through.
struct Binding {
  bool kept = false;
  ~Binding() {
    if (!kept) {
      globalLog = nullptr;
    }
  }
};

}  // namespace

void LOG_setGlobalLog(LOG_Logging* log) {
  if (log == nullptr) {
    GENAssert(GEN_NULL_POINTER, "LOGGLB", __LINE__);
  }
  LOG_Logging* none = nullptr;
  globalLog.compare_exchange_strong(none, log);
}

LOG_Logging& LOG_globalLog() {
  LOG_Logging* log = globalLog.load(std::memory_order_acquire);
  if (log == nullptr) {
    GENAssertText("Global log has not been initialised.", "LOGGLB", __LINE__);
  }
  return *log;
}

bool LOG_hasGlobalLog() noexcept {
  return globalLog.load(std::memory_order_acquire) != nullptr;
}

void LOG_createGlobalLog(PFA_Profile& profile, const SCL_StringRef& section, unsigned int& status) {
  if (LOG_hasGlobalLog() || status != 0) {
    return;
  }
  std::unique_ptr<LOG_Logging> log = GENMake<LOG_Logging>("LOGGLB", __LINE__);
  LOG_setGlobalLog(log.get());
  Binding binding;
  log->configure(profile, section, status);
  if (status == 0) {
    binding.kept = true;
    static_cast<void>(log.release());  // the process owns it from now on
  }
}
