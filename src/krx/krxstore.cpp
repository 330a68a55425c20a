// Delivery: the message file first, whole and on disk, then the envelope under the directory's
// lock, with its name only when it is whole; so a reader never sees an envelope without its whole
// message, nor half an envelope, whatever moment the process or the machine ends at. A guard
// owns the message file until the envelope is complete.
#include <cerrno>
#include <memory>

#include "dac/DACFILDA.h"
#include "fl/FLSTATUS.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "krx/krxdraw.h"
#include "krx/krxmsg.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"

namespace {

constexpr std::uint64_t ADDRESS_ESTIMATE = 100;
constexpr std::uint64_t PART_ESTIMATE = 400;
constexpr std::uint64_t CLUSTER = 4096;

std::uint64_t wholeClusters(std::uint64_t bytes) {
  return bytes / CLUSTER * CLUSTER + CLUSTER;
}

// The size that a part says it has, else its real one.
std::uint64_t partSize(DAC_BaseDataAccess& data) {
  std::uint32_t size = 0;
  unsigned int status = 0;
  data.getIntegerAttribute(dac::ATTACHMENT_SIZE, size, status);
  if (status == 0) {
    return size;
  }
  status = 0;
  const std::int32_t real = data.size(status);
  return real > 0 ? static_cast<std::uint64_t>(real) : 0;
}

constexpr unsigned int NEW_SPOOL_FILE =
    DAC_FileDataAccess::CREATE | DAC_FileDataAccess::EXCLUSIVE | DAC_FileDataAccess::SPOOL;

constexpr unsigned int NEW_ENVELOPE = NEW_SPOOL_FILE | DAC_FileDataAccess::LATE_NAME;

// To stable storage, and the checked close: what a destructor could not report.
void finish(DAC_FileDataAccess& file, unsigned int& status) {
  file.commit(status);
  file.close(status);
}

}  // namespace

void KRX_Message::checkFreeSpace(unsigned int& status) {
  if (status != 0) {
    return;
  }
  const std::uint64_t addresses = m_addresses.count();
  std::uint64_t content = 0;
  for (unsigned int i = 0; i < partCount(); ++i) {
    content += partSize(part(i)) + PART_ESTIMATE;
  }
  const std::uint64_t envelope = wholeClusters(ADDRESS_ESTIMATE * (addresses + 1));
  const std::uint64_t message =
      wholeClusters(ADDRESS_ESTIMATE * (addresses + 2ULL * m_headers.count()) + content);
  std::uint64_t available = 0;
  status = fl::freeSpace64(m_dst_dir, available);
  if (status == 0 && available < envelope + message) {
    status = KRX_FREE_SPACE;
  }
}

void KRX_Message::storeMessage(unsigned int& status) {
  if (status != 0) {
    return;
  }
  GENWithMemory("krxmsg", __LINE__, [&] { deliver(status); });
}

void KRX_Message::deliver(unsigned int& status) {
  KRX_NameDraw draw;
  chooseFileNames(draw, status);
  checkFreeSpace(status);
  KRX_FileGuard guard;
  std::unique_ptr<DAC_FileDataAccess> file = createMessageFile(draw, guard, status);
  if (status != 0) {
    return;
  }
  writeMessage(*file, status);
  finish(*file, status);
  file.reset();
  completePair(guard, status);
}

// Somebody else may have taken the name since it was chosen; then another one is drawn.
std::unique_ptr<DAC_FileDataAccess> KRX_Message::createMessageFile(KRX_NameDraw& draw,
                                                                   KRX_FileGuard& guard,
                                                                   unsigned int& status) {
  while (status == 0) {
    guard.setPath(m_dst_dir + m_msg_file);
    unsigned int created = 0;
    auto file = std::make_unique<DAC_FileDataAccess>(guard.path(), NEW_SPOOL_FILE, created);
    if (created == 0) {
      guard.own();
      return file;
    }
    if (created != DAC_EXISTS) {
      status = KRX_MESSAGE_CREATE;
      break;
    }
    forgetNames();
    chooseFileNames(draw, status);
  }
  return nullptr;
}

// The envelope, under the lock, and both names to stable storage before it is released.
void KRX_Message::completePair(KRX_FileGuard& messageFile, unsigned int& status) {
  if (status != 0) {
    return;
  }
  const KRX_DirectoryLock lock(m_dst_dir);
  if (!lock.isHeld()) {
    status = KRX_DEST_LOCKED;
    return;
  }
  // Ends before the lock does: nobody may find the message file beside an unfinished envelope.
  KRX_FileGuard guard(std::move(messageFile));
  unsigned int created = 0;
  // Removed before the message file is: an envelope without its message would be a message lost.
  KRX_FileGuard envelope(m_dst_dir + m_rcp_file);
  DAC_FileDataAccess file(envelope.path(), NEW_ENVELOPE, created);
  if (created != 0) {
    status = KRX_ENVELOPE_CREATE;
    return;
  }
  writeEnvelope(file, status);
  plat::clearFailure();
  file.commit(status);
  if (status == 0) {
    envelope.own();
  } else if (plat::lastFailure().error == EEXIST) {
    status = KRX_ENVELOPE_CREATE;  // somebody took the name, which a late envelope gets only now
  }
  file.close(status);
  if (status == 0 && plat::commitDirectory(m_dst_dir.view()) != 0) {
    status = DAC_FLUSH;
  }
  if (status == 0) {
    envelope.disown();
    guard.disown();
  }
}
