// KRX_Message: construction, fetching from the source directory, and what
// destruction removes.
#include "krx/krxmsg.h"

#include <cstring>
#include <new>
#include <optional>

#include "dac/DACFILDA.h"
#include "dv/DVPATH.h"
#include "fl/FLFILES.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gen/GENWNT.h"
#include "krx/krxapi.h"
#include "krx/krxmaddr.h"
#include "log/LOGGLB.h"
#include "log/LOGLOG.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"
#include "scl/SCLDUMP.h"

namespace {

constexpr char RECEIVER_DIRECTORY[] = "QDXRECVR\\";

// Opens a file of the pair for reading; the failure of either is a status of
// its own.
void openPairFile(const SCL_StringRef& path, unsigned int failure,
                  std::optional<DAC_FileDataAccess>& file, unsigned int& status) {
  if (status != 0) {
    return;
  }
  unsigned int openStatus = 0;
  file.emplace(
      path,
      DAC_FileDataAccess::READ_ONLY | DAC_FileDataAccess::SPOOL | DAC_FileDataAccess::OTHER_CASE,
      openStatus);
  if (openStatus != 0) {
    status = failure;
  }
}

}  // namespace

KRX_Message::KRX_Message(GMA_PostOffice* postOffice, const KRX_PairNames& names,
                         const KRX_MessageSettings& settings)
    : KRX_Message(postOffice, settings) {
  m_rcp_file = names.envelope;
  m_msg_file = names.message;
  m_fetched_rcp = names.envelope;
  m_fetched_msg = names.message;
}

KRX_Message::KRX_Message(GMA_PostOffice* postOffice, const KRX_MessageSettings& settings)
    : GMA_Message(postOffice),
      m_src_dir(settings.sourceDirectory),
      m_dst_dir(settings.destinationDirectory),
      m_dflt_domain(settings.mailDomain),
      m_container_class(settings.containerClass),
      m_stuck(settings.stuckPairs) {}

KRX_Message::~KRX_Message() {
  if (m_loaded != 0) {
    GENSwallow([this] { removeFetchedPair(); });
  }
}

// A pair that cannot be removed would be fetched and delivered at every poll:
// it is remembered.
void KRX_Message::removeFetchedPair() {
  for (const SCL_String* name : {&m_fetched_rcp, &m_fetched_msg}) {
    const int error = name->isEmpty() ? 0 : KRX_removeSpoolFile(m_src_dir + *name);
    if (error == 0) {
      continue;
    }
    if (m_stuck) {
      m_stuck->add(m_src_dir, m_fetched_rcp);
    }
    LOG_globalLog().writeText(KRX_LOG_ALL, KRX_FACILITY, LOG_Logging::BRIEF,
                              "Message %s could not be removed, %s.", (m_src_dir + *name).c_str(),
                              plat::errorText(error).c_str());
  }
}

GMA_Maddr* KRX_Message::newAddress() {
  auto* address = new (std::nothrow) KRX_Maddr;
  if (address == nullptr) {
    GENAssert(GEN_NULL_POINTER, "krxmsg", __LINE__);
  }
  return address;
}

void KRX_Message::loadMessage(unsigned int& status) {
  if (status != 0) {
    return;
  }
  m_loaded = 1;
  GENWithMemory("krxmsg", __LINE__, [&] { loadPair(status); });
}

void KRX_Message::loadPair(unsigned int& status) {
  {
    std::optional<DAC_FileDataAccess> envelope;
    openPairFile(m_src_dir + m_fetched_rcp, KRX_ENVELOPE_OPEN, envelope, status);
    if (status == 0) {
      readEnvelope(*envelope, status);
    }
  }
  std::optional<DAC_FileDataAccess> message;
  openPairFile(m_src_dir + m_fetched_msg, KRX_MESSAGE_OPEN, message, status);
  if (status == 0) {
    readMessage(*message, status);
  }
}

namespace {

// A receiver directory that is a link would let its owner choose where copies
// go. A new one is committed in its parent, else its copies could be lost with
// it.
unsigned int prepareReceiver(const SCL_StringRef& parent, const SCL_StringRef& directory) {
  const SCL_String path(directory.view().substr(0, directory.length() - 1));
  const int error = plat::makeDirectory(path.view(), 0770);
  if (error == 0) {
    return plat::commitDirectory(parent.view()) == 0 ? 0 : FL_MAKE_DIRECTORY;
  }
  plat::FileStatus found;
  if (plat::status(path.view(), found, false) != 0 || found.kind == plat::Kind::missing) {
    return FL_MAKE_DIRECTORY;
  }
  return found.kind == plat::Kind::directory ? 0 : FL_EXISTS;
}

// Copies one file of the pair, whole and committed; it is then its guard's.
unsigned int copyCommitted(const SCL_StringRef& source, KRX_FileGuard& target) {
  const unsigned int status = fl::copyFileWhole(source, target.path());
  if (status == 0 || status == FL_CLOSE) {
    target.own();
  }
  return status;
}

}  // namespace

void KRX_Message::save(void* /*argument*/, unsigned int& status) {
  if (status != 0) {
    return;
  }
  if (m_msg_file.isEmpty()) {
    GENAssertText("Empty file name in KRX_Message::save", "krxmsg", __LINE__);
  }
  GENWithMemory("krxmsg", __LINE__, [&] { status = copyToReceiver(); });
}

unsigned int KRX_Message::copyToReceiver() const {
  const SCL_String receiver = m_src_dir + RECEIVER_DIRECTORY;
  if (const unsigned int status = prepareReceiver(m_src_dir, receiver); status != 0) {
    return status;
  }
  // The message file first, and taken back last: no moment leaves an envelope
  // without its message.
  KRX_FileGuard message(receiver + m_fetched_msg);
  KRX_FileGuard envelope(receiver + m_fetched_rcp);
  unsigned int status = copyCommitted(m_src_dir + m_fetched_msg, message);
  if (status == 0) {
    status = copyCommitted(m_src_dir + m_fetched_rcp, envelope);
  }
  if (status == 0 && plat::commitDirectory(receiver.view()) != 0) {
    status = FL_COPY_WRITE;
  }
  if (status == 0) {
    envelope.disown();
    message.disown();
  }
  return status;
}

void KRX_Message::dump(const SCL_StringRef& name, std::ostream& stream,
                       SCL_DumpIndent& indent) const {
  SCL_Dump dump(stream, indent, name, "KRX_Message", this);
  GMA_Message::dump(name, stream, indent);
  dump.quoted("m_rcp_file", m_rcp_file);
  dump.quoted("m_msg_file", m_msg_file);
  dump.quoted("m_src_dir", m_src_dir);
  dump.quoted("m_dst_dir", m_dst_dir);
  dump.quoted("m_dflt_domain", m_dflt_domain);
}
