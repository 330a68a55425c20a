// The dial-up line of a post office: the operations of the dial-up service, bound at run time, and
// what the post office does with them: check its phonebook entry, and see to it that the line is up
// when mail is to be exchanged. The line is dropped by the service's idle time alone.
#pragma once

#include <cstdint>

#include "krx/krxrasif.h"
#include "scl/SCLSTRNG.h"

class SCL_DynamicLibrary;

// The operations of the dial-up service; all bound, or all null.
struct KRX_RasApi {
  RasDialFunction* dial = nullptr;
  RasGetConnectStatusFunction* getConnectStatus = nullptr;
  RasGetEntryPropertiesFunction* getEntryProperties = nullptr;
  RasSetEntryPropertiesFunction* setEntryProperties = nullptr;
  RasEnumConnectionsFunction* enumConnections = nullptr;
  RasGetErrorStringFunction* getErrorString = nullptr;
  RasHangUpFunction* hangUp = nullptr;

  bool isBound() const noexcept { return dial != nullptr; }
};

// Loads the service and binds its operations, whatever the status is on entry. 11924, logged: it
// cannot be loaded, `library` holds one already, or an operation is missing.
void KRX_bindRas(SCL_DynamicLibrary& library, KRX_RasApi& api, unsigned int& status);

// Tells the rest of the product, in the registry and by the named event, that it may retry sending
// now. Nobody listening is no error.
void KRX_signalRetryNow();

// What the post office is configured with; it owns the texts.
struct KRX_RasSettings {
  const SCL_String& office;
  const SCL_String& entry;
  const SCL_String& user;
  const SCL_String& password;
  const SCL_String& command;
  std::uint32_t idleTime;  // seconds
  std::uint32_t retryCount;
  std::uint32_t retryDelay;  // seconds
};

// The line, for one operation: settings, service and connection are the post office's.
class KRX_RasLine {
 public:
  // `connection`: the connection that the post office holds, 0 for none; raise() keeps it current.
  KRX_RasLine(const KRX_RasSettings& settings, const KRX_RasApi& api,
              RasHandle& connection) noexcept
      : m_settings(settings), m_api(api), m_connection(connection) {}

  // Checks the phonebook entry and gives it the configured idle time. 11922 no entry configured,
  // 11919 no such entry, 11920 the phonebook cannot be read, 11923 nor written; all are logged.
  void check(unsigned int& status);
  // Brings the line up unless it is, runs the configured command and signals that sending may be
  // retried. Blocks while it dials. What goes wrong is logged.
  void raise();

 private:
  // Checking (krxrasck.cpp).
  std::uint32_t readEntry(RasEntryBuffer& buffer, std::uint32_t& size, std::uint8_t* deviceInfo,
                          std::uint32_t* deviceInfoSize);
  void refuseEntry(std::uint32_t error, unsigned int& status);
  void listEntry(const RasEntryBuffer& buffer, std::uint32_t size, const std::uint8_t* deviceInfo,
                 std::uint32_t deviceInfoSize);
  void writeIdleTime(RasEntryBuffer& buffer, unsigned int& status);

  // Raising (krxras.cpp).
  void dropUnusable();
  void adopt();
  void dial();
  bool dialOnce(const RasDialParameters& parameters);
  void hangUp();
  void runCommand();

  void report(std::uint32_t error, const char* context);

  const KRX_RasSettings m_settings;
  const KRX_RasApi& m_api;
  RasHandle& m_connection;
};
