// The post office's directives and their validation.
#include "dv/DVDECODE.h"
#include "dv/DVPATH.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "krx/krxapi.h"
#include "krx/krxpo.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"

// Writes one line about the configuration; `facility` differs for the numeric directives alone.
#define KRX_CONFIG_LOG(facility, ...) \
  LOG_globalLog().writeText(KRX_LOG_ALL, facility, LOG_Logging::BRIEF, __VA_ARGS__)

namespace {

constexpr char SOURCE[] = "krxpo";
constexpr unsigned int HOST_FACILITY = 1;
constexpr unsigned int MAX_DIAL_TEXT = 256;
constexpr unsigned int MAX_DIRECTORY = 260;
constexpr int UNREACHABLE = -3;
constexpr int INVALID = -1;

}  // namespace

// A text that may be given once.
struct KRX_PostOffice::StringDirective {
  const char* name;
  SCL_String KRX_PostOffice::*field;
  const char* twiceWhat;  // "duplicate specification of <what>."
  const char* tooLongWhat;
  unsigned int twice;
  unsigned int tooLong;  // 0: no limit of its own
};

void KRX_PostOffice::configDirective(const SCL_StringRef& name, const SCL_StringRef& value,
                                     unsigned int& status) {
  if (status == 0) {
    GENWithMemory(SOURCE, __LINE__, [&] { applyDirective(name, value, status); });
  }
}

void KRX_PostOffice::applyDirective(const SCL_StringRef& name, const SCL_StringRef& value,
                                    unsigned int& status) {
  static constexpr StringDirective STRINGS[] = {
      {"SourceDir", &KRX_PostOffice::m_src_dir, "source directory", nullptr, KRX_SOURCE_TWICE, 0},
      {"DestDir", &KRX_PostOffice::m_dst_dir, "destination directory", nullptr, KRX_DEST_TWICE, 0},
      {"MailDomain", &KRX_PostOffice::m_dflt_domain, "mail domain", nullptr, KRX_DOMAIN_TWICE, 0},
      {"ContainerClass", &KRX_PostOffice::m_container_class, "ContainerClass", nullptr,
       KRX_CONTAINER_CLASS, 0},
      {"RasPhoneBookEntry", &KRX_PostOffice::m_ras_entry, "RasPhoneBookEntry",
       "RasPhoneBookEntry name", KRX_ENTRY_TWICE, KRX_ENTRY_LENGTH},
      {"RasUserName", &KRX_PostOffice::m_ras_user, "RasUserName", "RasUserName", KRX_USER_TWICE,
       KRX_USER_LENGTH},
      {"RasPassword", &KRX_PostOffice::m_ras_password, "RasPassword", "RasPassword",
       KRX_PASSWORD_TWICE, KRX_PASSWORD_LENGTH},
  };
  for (const StringDirective& directive : STRINGS) {
    if (SCL_equalNoCase(name, directive.name)) {
      setOnce(directive, value, status);
      return;
    }
  }
  if (SCL_equalNoCase(name, "RasSchedule")) {
    addSchedule(value, status);
  } else if (SCL_equalNoCase(name, "RasIdleTime") || SCL_equalNoCase(name, "RasRetryCount") ||
             SCL_equalNoCase(name, "RasRetryDelay")) {
    setNumber(name, value, status);
  } else if (SCL_equalNoCase(name, "RasCommand")) {
    setCommand(value);
  } else {
    status = KRX_UNKNOWN_DIRECTIVE;
    KRX_CONFIG_LOG(KRX_FACILITY,
                   "Error in configuration section %s, unrecognised configuration directive "
                   "\"%s\".",
                   m_name.c_str(), name.c_str());
  }
}

void KRX_PostOffice::setOnce(const StringDirective& directive, const SCL_StringRef& value,
                             unsigned int& status) {
  SCL_String& field = this->*directive.field;
  if (!field.isEmpty()) {
    status = directive.twice;
    KRX_CONFIG_LOG(KRX_FACILITY,
                   "Error in configuration section %s, duplicate specification of %s.",
                   m_name.c_str(), directive.twiceWhat);
  } else if (directive.tooLong != 0 && value.length() > MAX_DIAL_TEXT) {
    status = directive.tooLong;
    KRX_CONFIG_LOG(KRX_FACILITY, "Error in configuration section %s, %s \"%s\" is too long.",
                   m_name.c_str(), directive.tooLongWhat, value.c_str());
  } else {
    field = value;
  }
}

void KRX_PostOffice::setNumber(const SCL_StringRef& name, const SCL_StringRef& value,
                               unsigned int& status) {
  static constexpr struct {
    const char* name;
    std::uint32_t KRX_PostOffice::*field;
    std::uint32_t least;
    std::uint32_t most;
    std::uint32_t reset;  // what the field becomes when the number is outside
    unsigned int status;
    const char* rule;
  } NUMBERS[] = {
      {"RasIdleTime", &KRX_PostOffice::m_ras_idle_time, 1, UINT32_MAX, 30, KRX_IDLE_TIME,
       "cannot be zero"},
      {"RasRetryCount", &KRX_PostOffice::m_ras_retry_count, 1, 20, 1, KRX_RETRY_COUNT,
       "must be between 1 and 20"},
      {"RasRetryDelay", &KRX_PostOffice::m_ras_retry_delay, 1, 180, 10, KRX_RETRY_DELAY,
       "cannot be zero"},
  };
  for (const auto& row : NUMBERS) {
    if (!SCL_equalNoCase(name, row.name)) {
      continue;
    }
    std::uint32_t number = 0;
    if (!dv::decodeUnsigned(value, number)) {
      status = row.status;
      KRX_CONFIG_LOG(HOST_FACILITY, "Error in configuration section %s, Invalid %s %s",
                     m_name.c_str(), row.name, value.c_str());
      return;
    }
    if (number < row.least || number > row.most) {
      status = row.status;
      number = row.reset;
      KRX_CONFIG_LOG(HOST_FACILITY, "Error in configuration section %s,%s %s", m_name.c_str(),
                     row.name, row.rule);
    }
    this->*row.field = number;
    return;
  }
}

void KRX_PostOffice::setCommand(const SCL_StringRef& value) {
  if (SCL_firstChar(value) != '"') {
    m_ras_command = value;
    return;
  }
  const char* begin = value.c_str();
  if (SCL_unquote(begin, begin + value.length(), m_ras_command) == 0) {
    // Half a command must never reach the command interpreter.
    m_ras_command.clear();
    KRX_CONFIG_LOG(KRX_FACILITY,
                   "Error in configuration section %s, RasCommand is not a complete quoted "
                   "string.",
                   m_name.c_str());
  }
}

void KRX_PostOffice::validate(unsigned int& status) {
  if (status == 0) {
    GENWithMemory(SOURCE, __LINE__, [&] { checkConfiguration(status); });
  }
}

void KRX_PostOffice::checkConfiguration(unsigned int& status) {
  checkDirectory(m_src_dir, true, status);
  checkDirectory(m_dst_dir, false, status);
  if (status == 0 && m_dflt_domain.isEmpty()) {
    status = KRX_NO_DOMAIN;
    KRX_CONFIG_LOG(KRX_FACILITY,
                   "Error in configuration section %s, no mail domain has been specified.",
                   m_name.c_str());
  }
  if (status == 0 && m_container_class.isEmpty()) {
    status = KRX_CONTAINER_CLASS;
    KRX_CONFIG_LOG(KRX_FACILITY,
                   "Error in configuration section %s, no ContainerClass has been specified.",
                   m_name.c_str());
  }
  if (m_ras_schedule) {
    checkLine(status);
  }
}

void KRX_PostOffice::checkDirectory(SCL_String& directory, bool isSource, unsigned int& status) {
  if (status != 0) {
    return;
  }
  const char* what = isSource ? "source" : "destination";
  if (directory.isEmpty()) {
    status = isSource ? KRX_NO_SOURCE : KRX_NO_DEST;
    KRX_CONFIG_LOG(KRX_FACILITY,
                   "Error in configuration section %s, no %s directory has been specified.",
                   m_name.c_str(), what);
    return;
  }
  if (SCL_lastChar(directory) == '/') {
    directory[directory.length() - 1] = '\\';
  } else if (SCL_lastChar(directory) != '\\') {
    directory += '\\';
  }
  const int result = dv::checkDirectory(MAX_DIRECTORY, directory);
  if (result >= 0) {
    return;
  }
  if (result == UNREACHABLE) {
    KRX_CONFIG_LOG(KRX_FACILITY, "PostOffice \"%s\" Cannot access %s directory \"%s\".",
                   m_name.c_str(), what, directory.c_str());
    if (m_must_open) {
      status = isSource ? KRX_SOURCE_UNREACHABLE : KRX_DEST_UNREACHABLE;
    }
    return;
  }
  if (result == INVALID) {
    status = isSource ? KRX_SOURCE_INVALID : KRX_DEST_INVALID;
  } else {
    status = isSource ? KRX_SOURCE_OTHER : KRX_DEST_OTHER;
  }
  KRX_CONFIG_LOG(KRX_FACILITY, "PostOffice \"%s\" %s directory \"%s\" invalid.", m_name.c_str(),
                 isSource ? "Source" : "destination", directory.c_str());
}

void KRX_PostOffice::addSchedule(const SCL_StringRef& value, unsigned int& status) {
  if (!m_ras_schedule) {
    m_ras_schedule = GENMake<KRX_RasSchedule>("krxpo", __LINE__);
  }
  m_ras_schedule->add(value, status);
  if (status != 0) {
    KRX_CONFIG_LOG(KRX_FACILITY,
                   "Error in configuration section %s, entry \"%s\" is not valid, status %u.",
                   m_name.c_str(), "RasSchedule", status);
  }
}

// A service that is not there is told even when something else is wrong, too.
void KRX_PostOffice::checkLine(unsigned int& status) {
  KRX_bindRas(m_ras_lib, m_ras_api, status);
  KRX_RasLine(rasSettings(), m_ras_api, m_ras_conn).check(status);
}
