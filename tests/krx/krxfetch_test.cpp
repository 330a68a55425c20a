#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "dac/DACMEMDA.h"
#include "krx/Support.h"
#include "krx/krxmaddr.h"
#include "plat/PlatClock.h"
#include "plat/PlatFile.h"
#include "plat/PlatLock.h"
#include "plat/PlatPath.h"
#include "scl/SCLEXCPT.h"

namespace krxtest {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr char PLAIN[] = "Subject: x\n\nbody\n.\n";

class Fetch : public Spool {
 protected:
  // The base name of the next message's pair, or "none".
  std::string nextName() {
    unsigned int status = 0;
    const auto message = next(status);
    EXPECT_EQ(status, 0U);
    return message ? static_cast<KRX_Message&>(*message).envelopeFile().c_str() : "none";
  }
  std::string native(const std::string& path) { return plat::toNative(path); }
};

// Holds the lock of a directory in another open file description.
class ForeignLock {
 public:
  explicit ForeignLock(std::string directory) {
    directory.pop_back();
    held = plat::LockDir(directory.c_str(), 100, &handle) != 0;
  }
  ~ForeignLock() {
    const char flag = 0;
    plat::UnlockDir(&flag, handle);
  }
  bool held;
  long handle = 0;
};

TEST_F(Fetch, EachPairComesOnceAndItsDestructionRemovesIt) {
  put("A", PLAIN);
  put("B", PLAIN);
  std::set<std::string> names{nextName(), nextName()};
  EXPECT_THAT(names, ElementsAre("A.RCP", "B.RCP"));
  EXPECT_EQ(nextName(), "none");
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

TEST_F(Fetch, APairIsReturnedAgainUntilItsMessageIsDestroyed) {
  put("A", PLAIN);
  put("B", PLAIN);
  unsigned int status = 0;
  auto first = next(status);
  const SCL_String name = static_cast<KRX_Message&>(*first).envelopeFile();
  {
    auto again = next(status);
    EXPECT_EQ(static_cast<KRX_Message&>(*again).envelopeFile(), name);
  }
  EXPECT_NE(nextName(), name.c_str());
}

TEST_F(Fetch, PairsThatArriveWhileTheSearchGoesOnAreFound) {
  for (int i = 0; i < 5; ++i) {
    put("A" + std::to_string(i), PLAIN);
    EXPECT_NE(nextName(), "none");
    put("B" + std::to_string(i), PLAIN);
  }
  for (int i = 0; i < 5; ++i) {
    EXPECT_NE(nextName(), "none");
  }
  EXPECT_EQ(nextName(), "none");
}

TEST_F(Fetch, WhatIsNoFreePairIsSkippedAndStays) {
  writeFile(in() + "ALONE.RCP", "Recipient: a@b\r\n");
  put("RO", PLAIN);
  ::chmod(native(in() + "RO.RCP").c_str(), 0444);
  put("LINK", PLAIN);
  std::filesystem::rename(native(in() + "LINK.MSG"), native(m_directory.path() + "target"));
  std::filesystem::create_symlink(native(m_directory.path() + "target"), native(in() + "LINK.MSG"));
  writeFile(in() + "FIFO.RCP", "Recipient: a@b\r\n");
  ASSERT_EQ(::mkfifo(native(in() + "FIFO.MSG").c_str(), 0600), 0);
  writeFile(in() + "DIR.RCP", "Recipient: a@b\r\n");
  std::filesystem::create_directory(native(in() + "DIR.MSG"));
  std::filesystem::create_directory(native(in() + "D2.RCP"));
  put(".HIDDEN", PLAIN);
  for (const char* extension : {"RCP", "MSG"}) {
    std::filesystem::copy_file(native(in() + ".HIDDEN.") + extension,
                               native(in()) + "..\\..\\x." + extension);
  }
  const std::vector<std::string> before = filesIn(in());
  EXPECT_EQ(nextName(), "none");
  EXPECT_EQ(filesIn(in()), before);
}

TEST_F(Fetch, APairThatItsWriterHoldsOpenIsLeftAlone) {
  put("A", PLAIN);
  const int writer = ::open(native(in() + "A.MSG").c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(nextName(), "none");
  ::close(writer);
  EXPECT_EQ(nextName(), "A.RCP");
}

TEST_F(Fetch, EitherLetterCaseOfTheExtensionMakesAPair) {
  put("A", PLAIN);
  std::filesystem::rename(native(in() + "A.RCP"), native(in() + "A.rcp"));
  EXPECT_EQ(nextName(), "A.rcp");
  EXPECT_THAT(filesIn(in()), IsEmpty());
  put("B", PLAIN);
  std::filesystem::rename(native(in() + "B.MSG"), native(in() + "B.msg"));
  EXPECT_EQ(nextName(), "B.RCP");
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

TEST_F(Fetch, ALockedDirectoryIsWaitedForAndIsNoError) {
  plat::ManualClock clock({884000000, 0});
  put("A", PLAIN);
  plat::setClock(&clock);
  {
    const ForeignLock lock(in());
    ASSERT_TRUE(lock.held);
    EXPECT_EQ(nextName(), "none");
    EXPECT_EQ(clock.monotonicMilliseconds(), 49 * 2000);
  }
  EXPECT_EQ(nextName(), "A.RCP");
  plat::setClock(nullptr);
}

TEST_F(Fetch, APairThatCannotBeLoadedComesWithItsStatusAndGoes) {
  put("A", PLAIN, "no envelope\n");
  unsigned int status = 0;
  auto message = next(status);
  ASSERT_TRUE(message);
  EXPECT_EQ(status, 11981U);
  EXPECT_THAT(takeLog(),
              ElementsAre("11:1 Message A.RCP could not be loaded, status 11981."));
  message.reset();
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

TEST_F(Fetch, APairThatCannotBeRemovedIsNotFetchedAgain) {
  put("A", PLAIN);
  unsigned int status = 0;
  auto message = next(status);
  ::chmod(native(in() + "A.RCP").c_str(), 0444);
  ::chmod(native(in() + "A.MSG").c_str(), 0444);
  message.reset();
  ::chmod(native(in() + "A.RCP").c_str(), 0644);
  ::chmod(native(in() + "A.MSG").c_str(), 0644);
  EXPECT_EQ(takeLog().size(), 2U);
  EXPECT_EQ(nextName(), "none");
  put("A", "Subject: another\n\nx\n");
  EXPECT_EQ(nextName(), "A.RCP");
}

TEST_F(Fetch, AMessageMayOutliveItsPostOffice) {
  put("A", PLAIN);
  unsigned int status = 0;
  auto message = next(status);
  m_office.reset();
  message.reset();
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

class Save : public Fetch {
 protected:
  std::string receiver() const { return in() + "QDXRECVR\\"; }
};

TEST_F(Save, KeepsACommittedCopyOnceAndNeverReplacesOne) {
  put("A", PLAIN);
  unsigned int status = 0;
  auto message = next(status);
  message->save(nullptr, status);
  EXPECT_EQ(status, 0U);
  message->save(nullptr, status);
  EXPECT_EQ(status, 454U);
  message.reset();
  EXPECT_THAT(filesIn(in()), ElementsAre("QDXRECVR"));
  EXPECT_THAT(filesIn(receiver()), ElementsAre("A.MSG", "A.RCP"));
  EXPECT_EQ(withLf(readFile(receiver() + "A.MSG")), PLAIN);
}

TEST_F(Save, AHalfCopyIsTakenBackAndWhatWasThereStays) {
  put("A", PLAIN);
  std::filesystem::create_directory(native(in() + "QDXRECVR"));
  writeFile(receiver() + "A.MSG", "earlier");
  unsigned int status = 0;
  auto message = next(status);
  message->save(nullptr, status);
  EXPECT_EQ(status, 454U);
  EXPECT_THAT(filesIn(receiver()), ElementsAre("A.MSG"));
  EXPECT_EQ(readFile(receiver() + "A.MSG"), "earlier");
}

TEST_F(Save, ALinkedReceiverDirectoryIsRefused) {
  put("A", PLAIN);
  std::filesystem::create_directory_symlink(native(out()), native(in() + "QDXRECVR"));
  unsigned int status = 0;
  auto message = next(status);
  message->save(nullptr, status);
  EXPECT_EQ(status, 454U);
  EXPECT_THAT(filesIn(out()), IsEmpty());
}

TEST_F(Save, NeedsAFetchedPair) {
  const std::unique_ptr<GMA_Message> message(m_office->newMessage());
  unsigned int status = 0;
  EXPECT_THROW(message->save(nullptr, status), scl_exception_base*);
  status = 5;
  message->save(nullptr, status);
  EXPECT_EQ(status, 5U);
}

class Store : public Fetch {
 protected:
  Store() : m_message(m_office->newMessage()) {}
  unsigned int store() {
    unsigned int status = 0;
    m_message->storeMessage(status);
    return status;
  }
  void setId(const std::string& value) {
    m_message->headers().clear();
    m_message->headers().add(GMA_Mhdr(gma::RCPMESSAGEID, value.c_str()));
  }
  std::unique_ptr<GMA_Message> m_message;
};

TEST_F(Store, TheIdentifyingHeaderNamesThePairWhileTheNameIsFree) {
  setId(" <ABC123@domain>");
  EXPECT_EQ(store(), 0U);
  EXPECT_THAT(filesIn(out()), ElementsAre("ABC123.MSG", "ABC123.RCP"));
  m_message.reset(m_office->newMessage());
  setId("<ABC123@domain>");
  writeFile(out() + "other", "");
  EXPECT_EQ(store(), 0U);
  const std::string name = static_cast<KRX_Message&>(*m_message).envelopeFile().c_str();
  EXPECT_EQ(name.size(), 18U);
  EXPECT_EQ(outEnvelope(name.substr(0, 14)),
            "Message-ID: <" + name.substr(0, 14) + "@here>\nReturn-path: \n");
}

TEST_F(Store, NoBaseNameLeadsOutOfTheSpool) {
  for (const std::string& id :
       std::vector<std::string>{"<..\\..\\x@y>", "<../x@y>", "<a/b@y>", "<C:x@y>", "<.x@y>",
                                "<x.@y>", "< @y>", "<a*b@y>", "<@y>", "<x>", "x@y",
                                "<" + std::string(201, 'x') + "@y>"}) {
    m_message.reset(m_office->newMessage());
    setId(id);
    EXPECT_EQ(store(), 0U) << id;
    const std::string name = static_cast<KRX_Message&>(*m_message).envelopeFile().c_str();
    EXPECT_TRUE(name.size() == 18 && name[0] == 'C') << id << " gave " << name;
  }
  EXPECT_THAT(filesIn(m_directory.path()), ElementsAre("in", "out"));
  m_message.reset(m_office->newMessage());
  setId("<" + std::string(200, 'x') + "@y>");
  EXPECT_EQ(store(), 0U);
  EXPECT_TRUE(fileExists(out() + std::string(200, 'x') + ".RCP"));
}

TEST_F(Store, TwoInOneMillisecondGetDifferentNames) {
  plat::ManualClock clock({884000000, 5});
  plat::setClock(&clock);
  EXPECT_EQ(store(), 0U);
  m_message.reset(m_office->newMessage());
  clock.set({884000000, 5});
  EXPECT_EQ(store(), 0U);
  plat::setClock(nullptr);
  EXPECT_THAT(filesIn(out()),
              ElementsAre("C0884000000005.MSG", "C0884000000005.RCP", "C0884000000006.MSG",
                          "C0884000000006.RCP"));
}

TEST_F(Store, ANameIsTakenInEitherLetterCase) {
  writeFile(out() + "ABC.msg", "");
  setId("<ABC@x>");
  EXPECT_EQ(store(), 0U);
  EXPECT_FALSE(fileExists(out() + "ABC.RCP"));
}

TEST_F(Store, AnEndlessClashEndsWithAStatus) {
  plat::ManualClock clock({884000000, 0});
  plat::setClock(&clock);
  for (int i = 0; i < 1000; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "C0884000000%03d.RCP", i);
    writeFile(out() + name, "");
  }
  EXPECT_EQ(store(), 11971U);
  plat::setClock(nullptr);
  EXPECT_EQ(filesIn(out()).size(), 1000U);
}

TEST_F(Store, AFetchedPairKeepsItsNamesAndGainsItsIdentifyingHeader) {
  put("KEEP", PLAIN, "Recipient: a@b\n");
  unsigned int status = 0;
  const auto message = next(status);
  message->storeMessage(status);
  EXPECT_EQ(status, 0U);
  EXPECT_EQ(outEnvelope("KEEP"), "Message-ID: <KEEP@here>\nReturn-path: \nRecipient: a@b\n");
}

TEST_F(Store, RenamingAFetchedMessageStillRemovesItsOwnPair) {
  put("M", PLAIN);
  writeFile(out() + "M.MSG", "somebody else's");
  unsigned int status = 0;
  auto message = next(status);
  message->storeMessage(status);
  EXPECT_EQ(status, 0U);
  const std::string renamed = static_cast<KRX_Message&>(*message).messageFile().c_str();
  writeFile(in() + renamed, "a stranger's");
  message.reset();
  EXPECT_THAT(filesIn(in()), ElementsAre(renamed));
  EXPECT_EQ(readFile(out() + "M.MSG"), "somebody else's");
}

TEST_F(Store, AFailureLeavesNoMessageFile) {
  plat::ManualClock clock({884000000, 0});
  plat::setClock(&clock);
  {
    const ForeignLock lock(out());
    EXPECT_EQ(store(), 11976U);
  }
  plat::setClock(nullptr);
  EXPECT_THAT(filesIn(out()), IsEmpty());
  auto* body = new DAC_MemoryDataAccess;
  unsigned int status = 0;
  const std::string line(40000, 'x');
  body->writeLine(static_cast<std::int32_t>(line.size()), line.c_str(), status);
  m_message->setBody(body);
  EXPECT_EQ(store(), 10014U);
  EXPECT_THAT(filesIn(out()), IsEmpty());
  m_message->clearContent();
  m_message->addAddress(KRX_Maddr(130, "no name", "x"));
  m_message->addAddress(KRX_Maddr(131, "no name", "x"));
  EXPECT_THROW(store(), scl_exception_base*);
  EXPECT_THAT(filesIn(out()), IsEmpty());
  std::filesystem::remove(native(out()));
  m_message.reset(m_office->newMessage());
  EXPECT_NE(store(), 0U);
}

TEST_F(Store, DestroyingWhatWasNeverFetchedDeletesNothing) {
  setId("<A@x>");
  put("A", PLAIN);
  EXPECT_EQ(store(), 0U);
  m_message.reset();
  EXPECT_THAT(filesIn(in()), ElementsAre("A.MSG", "A.RCP"));
}

TEST_F(Store, FilesOfTheSpoolAreForOwnerAndGroup) {
  const mode_t mask = ::umask(0022);
  setId("<A@x>");
  EXPECT_EQ(store(), 0U);
  ::umask(mask);
  struct stat found {};
  ASSERT_EQ(::stat(native(out() + "A.MSG").c_str(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0640U);
}

}  // namespace
}  // namespace krxtest
