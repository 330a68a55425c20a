// Binding the dial-up service and raising the line.
#include "krx/krxras.h"

#include <cstdio>

#include "gen/GENCODES.h"
#include "gen/GENREG.h"
#include "krx/krxapi.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatClock.h"
#include "plat/PlatCommand.h"
#include "plat/PlatEvent.h"
#include "scl/SCLDYLIB.h"

#define KRX_RAS_PROGRESS(...) \
  LOG_globalLog().writeText(PROGRESS_STREAMS, KRX_FACILITY, LOG_Logging::VERBOSE, __VA_ARGS__)

namespace {

constexpr unsigned int PROGRESS_STREAMS = 5;

constexpr char PRODUCT_KEY[] = "Torvanix\\Brindlemark";
constexpr char RETRY_VALUE[] = "RetryNow";
constexpr char RETRY_EVENT[] = "Torvanix-Brindlemark-RetryNow";

template <class Function>
bool bind(const SCL_DynamicLibrary& library, const char* name, Function*& function) {
  function = reinterpret_cast<Function*>(library.symbol(name));
  return function != nullptr;
}

bool bindAll(const SCL_DynamicLibrary& library, KRX_RasApi& api) {
  return bind(library, "RasDialA", api.dial) &&
         bind(library, "RasGetConnectStatusA", api.getConnectStatus) &&
         bind(library, "RasGetEntryPropertiesA", api.getEntryProperties) &&
         bind(library, "RasSetEntryPropertiesA", api.setEntryProperties) &&
         bind(library, "RasGetErrorStringA", api.getErrorString) &&
         bind(library, "RasEnumConnectionsA", api.enumConnections) &&
         bind(library, "RasHangUpA", api.hangUp);
}

void failBinding(const char* message, unsigned int& status) {
  status = KRX_NO_DIAL_LIBRARY;
  LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF, "%s", message);
}

// Dial parameters that leave no password behind; the compiler may not drop writes to volatile.
struct Parameters {
  Parameters() noexcept { fields.size = sizeof fields; }
  Parameters(const Parameters&) = delete;
  Parameters& operator=(const Parameters&) = delete;
  ~Parameters() {
    volatile char* const secret = fields.password;
    for (std::size_t i = 0; i < sizeof fields.password; ++i) {
      secret[i] = '\0';
    }
  }
  RasDialParameters fields{};
};

}  // namespace

void KRX_bindRas(SCL_DynamicLibrary& library, KRX_RasApi& api, unsigned int& status) {
  if (library.load(KRX_RAS_LIBRARY_NAME) == 0) {
    LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                              "%s cannot be loaded, %s.", KRX_RAS_LIBRARY_NAME,
                              library.errorText().c_str());
    failBinding("Failed to link to the RAS API, is it installed?", status);
    return;
  }
  KRX_RasApi bound;
  if (!bindAll(library, bound)) {
    failBinding(
        "Failed to get entry points for one or more RAS API functions,Is the correct version "
        "installed",
        status);
    return;
  }
  api = bound;
}

void KRX_signalRetryNow() {
  unsigned int status = 0;
  gen::regWriteSoftwareNumber(PRODUCT_KEY, RETRY_VALUE, 1, status);
  if (status == 0) {
    plat::setNamedEvent(RETRY_EVENT);
  }
}

void KRX_RasLine::raise() {
  KRX_RAS_PROGRESS("Start RASDialUp %s", m_settings.entry.c_str());
  if (m_connection != 0) {
    dropUnusable();
  }
  if (m_connection == 0) {
    adopt();
  }
  if (m_connection == 0) {
    dial();
  }
  if (m_connection == 0) {
    return;
  }
  KRX_RAS_PROGRESS("RASDialUp completed %s", m_settings.entry.c_str());
  if (!m_settings.command.isEmpty()) {
    runCommand();
  }
  KRX_signalRetryNow();
}

void KRX_RasLine::dropUnusable() {
  RasStatus state{};
  state.size = sizeof state;
  if (m_api.getConnectStatus(m_connection, &state) != 0) {
    m_connection = 0;  // the service does not know it any more, so there is nothing to hang up
  } else if (state.state != RAS_CONNECTED || state.error != 0) {
    hangUp();
  }
}

// Takes over a connection of the entry that somebody else has opened.
void KRX_RasLine::adopt() {
  RasConnection connections[RAS_MAX_CONNECTIONS] = {};
  connections[0].size = sizeof connections[0];
  std::uint32_t size = sizeof connections;
  std::uint32_t count = 0;
  if (const auto error = m_api.enumConnections(connections, &size, &count); error != 0) {
    report(error, "RasEnumConnections");
    return;
  }
  RasConnection* const end = connections + std::min(count, RAS_MAX_CONNECTIONS);
  const auto found = std::find_if(connections, end, [this](const RasConnection& connection) {
    return KRX_rasText(connection.entryName) == m_settings.entry.view();
  });
  if (found != end) {
    m_connection = found->handle;
  }
}

// The pause also follows the last failure: the line, or the other side, is given time to settle.
void KRX_RasLine::dial() {
  Parameters parameters;
  KRX_setRasText(parameters.fields.entryName, m_settings.entry);
  KRX_setRasText(parameters.fields.userName, m_settings.user);
  KRX_setRasText(parameters.fields.password, m_settings.password);
  for (std::uint32_t attempt = 0; attempt < m_settings.retryCount; ++attempt) {
    if (dialOnce(parameters.fields)) {
      return;
    }
    plat::sleepMilliseconds(m_settings.retryDelay * 1000);
  }
}

bool KRX_RasLine::dialOnce(const RasDialParameters& parameters) {
  const auto error = m_api.dial(nullptr, nullptr, &parameters, 0, nullptr, &m_connection);
  if (error == 0) {
    return true;
  }
  report(error, "Error in initiating RAS dial up connection");
  if (m_connection != 0) {
    hangUp();
  }
  return false;
}

void KRX_RasLine::hangUp() {
  m_api.hangUp(m_connection);
  m_connection = 0;
}

void KRX_RasLine::runCommand() {
  int error = 0;
  const int result = plat::runCommand(m_settings.command, error);
  KRX_RAS_PROGRESS("RasCommand result %i", result);
  if (result == -1) {
    KRX_RAS_PROGRESS("RasCommand errno %i", error);
  }
}

void KRX_RasLine::report(std::uint32_t error, const char* context) {
  char text[RAS_ERROR_TEXT_SIZE] = "";
  if (m_api.getErrorString(error, text, sizeof text) != 0) {
    std::snprintf(text, sizeof text, "Error Code %u", error);
  }
  text[sizeof text - 1] = '\0';
  LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF, "%s:%s RasError %s",
                            m_settings.office.c_str(), context, text);
}
