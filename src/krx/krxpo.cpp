// KRX_PostOffice: construction, fetching and new messages.
#include "krx/krxpo.h"

#include <new>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "krx/krxapi.h"
#include "krx/krxmsg.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatError.h"
#include "scl/SCLDUMP.h"

namespace {

// Never throws: by now the message's destruction would remove a pair that no host has seen.
void logFailedLoad(const SCL_String& envelope, const std::optional<std::string>& failure,
                   unsigned int status) noexcept {
  GENSwallow([&] {
    const std::string why = failure ? *failure : "status " + std::to_string(status);
    LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                              "Message %s could not be loaded, %s.", envelope.c_str(), why.c_str());
  });
}

}  // namespace

KRX_PostOffice::KRX_PostOffice(GMA_POGroup* group, const SCL_StringRef& name)
    : GMA_PostOffice(group, name), m_stuck(std::make_shared<KRX_StuckPairs>()) {}

KRX_PostOffice::~KRX_PostOffice() = default;

int KRX_PostOffice::type() {
  return 0;
}

void KRX_PostOffice::reservedHook(void* /*argument*/) {}

KRX_MessageSettings KRX_PostOffice::messageSettings() const {
  return {m_src_dir, m_dst_dir, m_dflt_domain, m_container_class, m_stuck};
}

KRX_RasSettings KRX_PostOffice::rasSettings() const noexcept {
  return {m_name,        m_ras_entry,     m_ras_user,        m_ras_password,
          m_ras_command, m_ras_idle_time, m_ras_retry_count, m_ras_retry_delay};
}

// Mail that has come is fetched whether or not the line came up.
void KRX_PostOffice::raiseLineWhenDue() noexcept {
  const auto failure = GENCatch([this] {
    if (m_ras_schedule->isDue() && m_ras_api.isBound()) {
      KRX_RasLine(rasSettings(), m_ras_api, m_ras_conn).raise();
    }
  });
  if (failure) {
    GENSwallow([&] {
      LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                                "The dial-up line of %s could not be raised, %s.", m_name.c_str(),
                                failure->c_str());
    });
  }
}

GMA_Message* KRX_PostOffice::newMessage() {
  auto* message = new (std::nothrow) KRX_Message(this, messageSettings());
  if (message == nullptr) {
    GENAssert(GEN_NULL_POINTER, "krxpo", __LINE__);
  }
  return message;
}

GMA_Message* KRX_PostOffice::nextMessage(unsigned int& status) {
  if (status != 0) {
    return nullptr;
  }
  if (m_ras_schedule) {
    raiseLineWhenDue();
  }
  return GENWithMemory("krxpo", __LINE__, [&] { return fetchMessage(status); });
}

GMA_Message* KRX_PostOffice::fetchMessage(unsigned int& status) {
  std::optional<KRX_PairNames> pair;
  {
    const KRX_DirectoryLock lock(m_src_dir);
    if (lock.isHeld()) {
      pair = m_search.next(m_src_dir, *m_stuck);
    }
  }
  if (!pair) {
    return nullptr;
  }
  std::unique_ptr<KRX_Message> message(new (std::nothrow)
                                           KRX_Message(this, *pair, messageSettings()));
  if (!message) {
    GENAssert(GEN_NULL_POINTER, "krxpo", __LINE__);
  }
  // Whatever a mail does to the loading, its message goes to the host: a pair that stayed here
  // would be found again by every later call.
  plat::clearFailure();  // the search may have met a pair that had just gone
  const auto failure = GENCatch([&] { message->loadMessage(status); });
  if (failure) {
    status = GEN_INTERNAL_ERROR;
  }
  if (status != 0) {
    logFailedLoad(pair->envelope, failure, status);
  }
  return message.release();
}

void KRX_PostOffice::dump(const SCL_StringRef& name, std::ostream& stream,
                          SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "KRX_PostOffice", this);
  GMA_PostOffice::dump(name, stream, indent);
  dump.quoted("m_src_dir", m_src_dir);
  dump.quoted("m_dst_dir", m_dst_dir);
  dump.quoted("m_dflt_domain", m_dflt_domain);
}
