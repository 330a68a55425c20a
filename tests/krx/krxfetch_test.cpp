// Pairs on their way: found and fetched, kept by save, removed, and delivered.
#include <chrono>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "dac/DACMEMDA.h"
#include "gen/GENWNT.h"
#include "krx/Support.h"
#include "krx/krxmaddr.h"
#include "krx/krxspool.h"
#include "plat/PlatClock.h"
#include "plat/PlatLock.h"
#include "plat/PlatPath.h"
#include "scl/Failure.h"
#include "scl/SCLEXCPT.h"

namespace krxtest {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char PLAIN[] = "Subject: x\n\nbody\n.\n";

class Fetch : public Spool {
 protected:
  ~Fetch() override { plat::setClock(nullptr); }

  // The base name of the next message's pair, which is gone then, or "none".
  std::string nextName() {
    unsigned int status = 0;
    const auto message = next(status);
    EXPECT_EQ(status, 0U);
    return message ? baseName(*message) : "none";
  }
  static unsigned int save(GMA_Message& message) {
    unsigned int status = 0;
    message.save(nullptr, status);
    return status;
  }
  static std::string native(const std::string& path) { return plat::toNative(path); }
  void setMode(const std::string& name, mode_t mode) const {
    ASSERT_EQ(::chmod(native(in() + name).c_str(), mode), 0);
  }
  static unsigned int modeOf(const std::string& path) {
    struct stat found {};
    EXPECT_EQ(::stat(native(path).c_str(), &found), 0);
    return found.st_mode & 0777;
  }
  std::string receiver() const { return in() + "QDXRECVR\\"; }

  plat::ManualClock m_clock{{884000000, 5}};  // with it, waiting costs no time
};

// The lock of a directory in another open file description.
struct ForeignLock {
  explicit ForeignLock(const std::string& directory)
      : held(plat::LockDir(directory.c_str(), 100, &handle) != 0) {}
  ~ForeignLock() { plat::UnlockDir("", handle); }
  long handle = -1;
  bool held;
};

TEST_F(Fetch, APairIsReturnedAgainUntilItsMessageIsDestroyedOrTheFileIsMarked) {
  const auto first = fetched(PLAIN);
  put("B", PLAIN);
  EXPECT_EQ(nextName(), "M");
  unsigned int status = 0;
  const auto second = next(status);
  EXPECT_EQ(baseName(*second), "B");
  setMode("B.RCP", 0444);
  EXPECT_EQ(nextName(), "none");
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
  for (const std::string& name : std::vector<std::string>{
           "RO", "LINK", "FIFO", "ALONE", ".POINT", "a?b", "a\\..\\x", std::string(251, 'x')}) {
    for (const char* extension : {".RCP", ".MSG"}) {
      std::ofstream(native(in()) + name + extension) << "Recipient: a@b\r\n";
    }
  }
  setMode("RO.RCP", 0444);
  for (const char* name : {"LINK.MSG", "FIFO.MSG", "ALONE.MSG"}) {
    fs::remove(native(in() + name));
  }
  fs::create_symlink(native(in() + "RO.MSG"), native(in() + "LINK.MSG"));
  ASSERT_EQ(::mkfifo(native(in() + "FIFO.MSG").c_str(), 0600), 0);
  fs::create_directory(native(in() + "DIR.RCP"));
  const std::vector<std::string> before = filesIn(in());
  EXPECT_EQ(nextName(), "none");
  put("GOOD", PLAIN);
  const int writer = ::open(native(in() + "GOOD.MSG").c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(nextName(), "none");
  ::close(writer);
  EXPECT_EQ(nextName(), "GOOD");
  EXPECT_EQ(filesIn(in()), before);
}

TEST_F(Fetch, EitherLetterCaseOfTheExtensionMakesAPair) {
  for (const auto& [from, to] : {std::pair("A.RCP", "A.rcp"), std::pair("A.MSG", "A.msg")}) {
    put("A", PLAIN);
    fs::rename(native(in() + from), native(in() + to));
    EXPECT_EQ(nextName(), "A");
    EXPECT_THAT(filesIn(in()), IsEmpty());
  }
}

TEST_F(Fetch, ALockedDirectoryIsWaitedForAndIsNoError) {
  put("A", PLAIN);
  plat::setClock(&m_clock);
  {
    const ForeignLock lock(in());
    ASSERT_TRUE(lock.held);
    EXPECT_EQ(nextName(), "none");
    EXPECT_EQ(m_clock.monotonicMilliseconds(), 49 * 2000);
    EXPECT_EQ(KRX_DirectoryLock(in().c_str()).status(), 11973U);
  }
  EXPECT_EQ(nextName(), "A");
}

TEST_F(Fetch, APairThatCannotBeLoadedComesWithItsStatusAndGoes) {
  put("A", PLAIN, "no envelope\n");
  unsigned int status = 0;
  EXPECT_TRUE(next(status));
  EXPECT_EQ(status, 11981U);
  EXPECT_THAT(takeLog(), ElementsAre("11:1 Message A.RCP could not be loaded, status 11981."));
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

TEST_F(Fetch, AFileThatIsGoneWhenThePairIsLoadedIsTold) {
  const auto message = fetched(PLAIN);
  for (const auto& [name, wanted] : {std::pair("M.MSG", 11969U), {"M.RCP", 11968U}}) {
    fs::remove(native(in() + name));
    unsigned int status = 0;
    message->loadMessage(status);
    EXPECT_EQ(status, wanted);
  }
}

TEST_F(Fetch, APairThatCannotBeRemovedIsNotFetchedAgain) {
  auto message = fetched(PLAIN);
  for (const mode_t mode : {0444U, 0644U}) {
    setMode("M.RCP", mode);
    setMode("M.MSG", mode);
    message.reset();
  }
  EXPECT_EQ(takeLog().size(), 2U);
  EXPECT_EQ(nextName(), "none");
  const std::string changed = native(in() + "M.RCP");
  fs::last_write_time(changed, fs::last_write_time(changed) + std::chrono::seconds(1));
  EXPECT_EQ(nextName(), "M");
}

TEST_F(Fetch, AMessageMayOutliveItsPostOffice) {
  auto message = fetched(PLAIN);
  m_office.reset();
  message.reset();
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

TEST_F(Fetch, AMessageStoredUnderAnotherNameStillKeepsAndRemovesItsOwnPair) {
  auto message = fetched(PLAIN);
  writeFile(out() + "M.MSG", "somebody else's");
  EXPECT_EQ(store(*message), 0U);
  const std::string renamed = baseName(*message) + ".MSG";
  writeFile(in() + renamed, "a stranger's");
  EXPECT_EQ(save(*message), 0U);
  EXPECT_EQ(save(*message), 454U);
  message.reset();
  EXPECT_THAT(filesIn(in()), ElementsAre(renamed, "QDXRECVR"));
  EXPECT_THAT(filesIn(receiver()), ElementsAre("M.MSG", "M.RCP"));
  EXPECT_EQ(withLf(readFile(receiver() + "M.MSG")), PLAIN);
  EXPECT_EQ(outMessage("M"), "somebody else's");
}

TEST_F(Fetch, AHalfCopyIsTakenBackAndWhatWasThereStays) {
  const auto message = fetched(PLAIN);
  fs::create_directory(native(receiver()));
  for (const char* name : {"M.MSG", "M.RCP"}) {
    writeFile(receiver() + name, "earlier");
    EXPECT_EQ(save(*message), 454U);
    EXPECT_THAT(filesIn(receiver()), ElementsAre(name));
    EXPECT_EQ(readFile(receiver() + name), "earlier");
    fs::remove(native(receiver() + name));
  }
}

TEST_F(Fetch, ALinkedReceiverDirectoryIsRefused) {
  const auto message = fetched(PLAIN);
  fs::create_directory_symlink(native(out()), native(in() + "QDXRECVR"));
  EXPECT_EQ(save(*message), 454U);
  EXPECT_THAT(filesIn(out()), IsEmpty());
}

class Store : public Fetch {
 protected:
  // A new message whose identifying header has this value.
  std::unique_ptr<GMA_Message> identified(const std::string& value) {
    std::unique_ptr<GMA_Message> message(m_office->newMessage());
    message->headers().add(GMA_Mhdr(gma::RCPMESSAGEID, value.c_str()));
    return message;
  }
  // The base name under which a message with that value is stored.
  std::string storedAs(const std::string& value) {
    const auto message = identified(value);
    EXPECT_EQ(store(*message), 0U) << value;
    return baseName(*message);
  }
};

// Somebody who makes a file at a certain moment of the delivery: when the room is asked for, after
// the names were chosen, or when the content is read, after the message file was made.
class Rival : public DAC_MemoryDataAccess {
 public:
  enum Moment { BEFORE_CREATION, AFTER_CREATION };
  Rival(std::string path, Moment moment) : m_path(std::move(path)), m_moment(moment) {}
  std::int32_t size(unsigned int& status) override {
    act(BEFORE_CREATION);
    return DAC_MemoryDataAccess::size(status);
  }
  std::int32_t setPosition(std::int32_t position, unsigned int& status) override {
    act(AFTER_CREATION);
    return DAC_MemoryDataAccess::setPosition(position, status);
  }

 private:
  void act(Moment moment) const {
    if (moment == m_moment) {
      writeFile(m_path, "theirs");
    }
  }
  std::string m_path;
  Moment m_moment;
};

// A recipient that cannot be written.
class Unwritable : public KRX_Maddr {
 public:
  using KRX_Maddr::KRX_Maddr;
  GMA_Maddr* clone() const override { return new Unwritable(*this); }
  void getText(SCL_String&) const override { GENAssertText("Unwritable.", "test", __LINE__); }
};

TEST_F(Store, TheIdentifyingHeaderNamesThePairWhileTheNameIsFreeInEitherLetterCase) {
  EXPECT_EQ(storedAs(" <ABC123@domain>"), "ABC123");
  EXPECT_THAT(filesIn(out()), ElementsAre("ABC123.MSG", "ABC123.RCP"));
  const std::string drawn = storedAs("<ABC123@domain>");
  EXPECT_EQ(drawn.size(), 14U);
  EXPECT_EQ(outEnvelope(drawn), "Message-ID: <" + drawn + "@here>\nReturn-path: \n");
  writeFile(out() + "OTHER.msg", "");
  EXPECT_NE(storedAs("<OTHER@domain>"), "OTHER");
}

TEST_F(Store, NoBaseNameLeadsOutOfTheSpool) {
  const std::string longest(200, 'x');
  for (const std::string& id : std::vector<std::string>{
           "<..\\..\\x@y>", "<../x@y>", "<a/b@y>", "<C:x@y>", "<.x@y>", "<x.@y>", "< @y>",
           "<a*b@y>", "<@y>", "<x>", "x@y", "<" + longest + "x@y>"}) {
    const std::string name = storedAs(id);
    EXPECT_TRUE(name.size() == 14 && name[0] == 'C') << id << " gave " << name;
  }
  EXPECT_THAT(filesIn(m_directory.path()), ElementsAre("in", "out"));
  EXPECT_EQ(storedAs("<" + longest + "@y>"), longest);
}

TEST_F(Store, NamesAreDrawnFromTheClockUntilOneIsFreeOrTheDrawsAreUsedUp) {
  plat::setClock(&m_clock);
  EXPECT_EQ(storedAs(""), "C0884000000005");
  m_clock.set({884000000, 5});
  EXPECT_EQ(storedAs(""), "C0884000000006");
  for (int i = 7; i < 1007; ++i) {
    char name[32];
    std::snprintf(name, sizeof name, "C%010d%03d.RCP", 884000000 + i / 1000, i % 1000);
    writeFile(out() + name, "");
  }
  m_clock.set({884000000, 7});
  EXPECT_EQ(store(*identified("")), 11971U);
  EXPECT_EQ(filesIn(out()).size(), 1004U);
}

TEST_F(Store, AFetchedPairKeepsItsNamesAndGainsItsIdentifyingHeader) {
  EXPECT_EQ(store(*fetched(PLAIN, "Recipient: a@b\n")), 0U);
  EXPECT_EQ(outEnvelope("M"), "Message-ID: <M@here>\nReturn-path: \nRecipient: a@b\n");
}

TEST_F(Store, WhatARivalMakesMeanwhileIsNeitherUsedNorRemoved) {
  const auto renamed = identified("<ABC@x>");
  renamed->setBody(new Rival(out() + "ABC.MSG", Rival::BEFORE_CREATION));
  EXPECT_EQ(store(*renamed), 0U);
  EXPECT_NE(baseName(*renamed), "ABC");
  EXPECT_EQ(outMessage("ABC"), "theirs");
  const auto refused = identified("<DEF@x>");
  refused->setBody(new Rival(out() + "DEF.RCP", Rival::AFTER_CREATION));
  EXPECT_EQ(store(*refused), 11972U);
  EXPECT_EQ(outEnvelope("DEF"), "theirs");
  EXPECT_FALSE(fs::exists(native(out() + "DEF.MSG")));
}

TEST_F(Store, AFailureLeavesNoMessageFile) {
  const auto message = identified("<A@x>");
  plat::setClock(&m_clock);
  {
    const ForeignLock lock(out());
    EXPECT_EQ(store(*message), 11976U);
  }
  message->setBody(newContent(std::string(40000, 'x') + "\r\n"));
  EXPECT_EQ(store(*message), 10014U);
  message->clearContent();
  message->addAddress(KRX_Maddr(130, "a type without a field", "x"));
  EXPECT_EQ(failureOf([&] { store(*message); }), "Bad value in switch in krxmsg");
  EXPECT_THAT(filesIn(out()), IsEmpty());
}

TEST_F(Store, AThrowUnderTheLockReleasesItAndLeavesNoMessageFile) {
  const auto message = identified("<A@x>");
  message->addresses().add(Unwritable(gma::BCCADDR, "a", "b"));
  EXPECT_EQ(failureOf([&] { store(*message); }), "Unwritable. in test");
  EXPECT_TRUE(ForeignLock(out()).held);
  EXPECT_THAT(filesIn(out()), IsEmpty());
}

TEST_F(Store, WithoutRoomForAllPartsNothingIsWritten) {
  const auto message = identified("<A@x>");
  for (int i = 0; i < 4096; ++i) {  // 16 TiB, and next to nothing in 32 bits
    auto* item = new DAC_MemoryDataAccess;
    item->setIntegerAttribute("AttachmentSize", 0xFFFFFFFF);
    message->addItem(item, false);
  }
  EXPECT_EQ(store(*message), 11989U);
  EXPECT_THAT(filesIn(out()), IsEmpty());
}

TEST_F(Store, WhatWasNeverFetchedIsNeitherSavedNorRemoved) {
  put("A", PLAIN);
  EXPECT_EQ(storedAs("<A@x>"), "A");
  EXPECT_EQ(failureOf([&] { save(*identified("<A@x>")); }),
            "Empty file name in KRX_Message::save in krxmsg");
  EXPECT_THAT(filesIn(in()), ElementsAre("A.MSG", "A.RCP"));
}

TEST_F(Store, FilesOfTheSpoolAreForOwnerAndGroup) {
  const mode_t mask = ::umask(0022);
  storedAs("<A@x>");
  save(*fetched(PLAIN));
  ::umask(mask);
  EXPECT_EQ(modeOf(out() + "A.MSG"), 0640U);
  EXPECT_EQ(modeOf(receiver()), 0750U);
}

}  // namespace
}  // namespace krxtest
