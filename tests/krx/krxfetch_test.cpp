// Pairs on their way: found and fetched, kept by save, removed, and delivered.
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include "dac/DACMEMDA.h"
#include "fl/FullDisk.h"
#include "gen/GENCATCH.h"
#include "gen/GENWNT.h"
#include "gen/Variable.h"
#include "krx/Support.h"
#include "krx/krxmaddr.h"
#include "krx/krxspool.h"
#include "log/LOGGLB.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatClock.h"
#include "plat/PlatLock.h"
#include "plat/PlatPath.h"
#include "scl/FailingMemory.h"
#include "scl/Failure.h"
#include "scl/SCLEXCPT.h"

extern "C" int KRX_GetMailAccessObject(const char* unused, GMA_POGroup* group, const char* name,
                                       LOG_Logging& log, GMA_PostOffice** result,
                                       unsigned int& status);

static int failingCommit = 0;
static int rivalCommit = 0;
static std::string rivalName;

// The so many-th from now fails, or is the moment in which a rival makes a file.
int fsync(int descriptor) {
  if (rivalCommit > 0 && --rivalCommit == 0) {
    std::ofstream(rivalName) << "theirs";
  }
  if (failingCommit > 0 && --failingCommit == 0) {
    errno = EIO;
    return -1;
  }
  return static_cast<int>(::syscall(SYS_fsync, descriptor));
}

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

// Puts something that is no regular file where a file of a pair should be. A device needs a
// privilege; without it there is none.
void putOdd(const std::string& kind, const std::string& path) {
  fs::remove(path);
  if (kind == "LINK") {
    fs::create_symlink("RO.MSG", path);
  } else if (kind == "DIR") {
    fs::create_directory(path);
  } else if (kind == "DEVICE") {
    ::mknod(path.c_str(), S_IFCHR | 0600, ::makedev(1, 3));
  } else {
    ASSERT_EQ(::mknod(path.c_str(), (kind == "FIFO" ? S_IFIFO : S_IFSOCK) | 0600, 0), 0);
    fs::last_write_time(path, fs::last_write_time(path) - std::chrono::hours(1));
  }
}

TEST_F(Fetch, WhatIsNoFreePairIsSkippedAndStays) {
  std::vector<std::string> names{"RO",   "ALONE",      ".POINT",
                                 "a?b",  "a\\..\\x",   "C:x",
                                 "a\nb", "..\\in\\RO", std::string(251, 'x')};
  for (const char* kind : {"LINK", "FIFO", "SOCKET", "DEVICE", "DIR"}) {
    for (const char* half : {"RCP", "MSG"}) {
      names.push_back(std::string(kind) + half);
    }
  }
  for (const std::string& name : names) {
    for (const char* extension : {".RCP", ".MSG"}) {
      const std::string path = native(in()) + name + extension;
      std::ofstream(path) << "Recipient: a@b\r\n";
      if (name.size() > 5 && name.ends_with(extension + 1)) {
        putOdd(name.substr(0, name.size() - 3), path);
      }
    }
  }
  setMode("RO.RCP", 0444);
  fs::remove(native(in() + "ALONE.MSG"));
  const std::vector<std::string> before = filesIn(in());
  EXPECT_EQ(nextName(), "none");
  put("GOOD", PLAIN);
  const int writer = ::open(native(in() + "GOOD.MSG").c_str(), O_WRONLY | O_CLOEXEC);
  EXPECT_EQ(nextName(), "none");
  ::close(writer);
  EXPECT_EQ(nextName(), "GOOD");
  EXPECT_EQ(filesIn(in()), before);
}

TEST_F(Fetch, AHardLinkLosesItsNameAndNothingElse) {
  put("A", PLAIN);
  const std::string outside = native(m_directory.path() + "outside");
  fs::create_hard_link(native(in() + "A.MSG"), outside);
  EXPECT_EQ(nextName(), "A");
  EXPECT_THAT(filesIn(in()), IsEmpty());
  EXPECT_EQ(withLf(readFile(outside)), PLAIN);
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
  unsigned int status = 0;
  message->loadMessage(status);
  EXPECT_EQ(status, 0U);
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

TEST_F(Fetch, WhatIsSavedIsOnTheDiskOrNotThere) {
  const Variable commits("KRX_COMMIT", "1");
  const auto message = fetched(PLAIN);
  fs::create_directory(native(receiver()));
  {
    const FullDisk full(0);
    EXPECT_EQ(save(*message), 472U);
  }
  for (const int at : {1, 2, 3}) {  // the message file, the envelope, the directory
    failingCommit = at;
    EXPECT_EQ(save(*message), 472U) << at;
    EXPECT_THAT(filesIn(receiver()), IsEmpty()) << at;
  }
  EXPECT_EQ(save(*message), 0U);
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
           "<a*b@y>", "<a\tb@y>", "<@y>", "<x>", "x@y", "<" + longest + "x@y>"}) {
    const std::string name = storedAs(id);
    EXPECT_TRUE(name.size() == 14 && name[0] == 'C') << id << " gave " << name;
  }
  EXPECT_THAT(filesIn(m_directory.path()), ElementsAre("in", "out"));
  EXPECT_EQ(storedAs("<" + longest + "@y>"), longest);
  const auto twice = identified("<a/b@y>");
  twice->headers().add(GMA_Mhdr(gma::RCPMESSAGEID, "<c/d@y>"));
  EXPECT_EQ(store(*twice), 0U);
  EXPECT_EQ(outEnvelope(baseName(*twice)),
            "Message-ID: <" + baseName(*twice) + "@here>\nReturn-path: \n");
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

TEST_F(Store, WhatIsDeliveredIsOnTheDiskOrNotThere) {
  const Variable commits("KRX_COMMIT", "1");
  const auto message = identified("<A@x>");
  message->setBody(newContent("text\r\n"));
  {
    const FullDisk full(0);
    EXPECT_EQ(store(*message), 10034U);
  }
  for (const int at : {1, 2, 3}) {  // the message file, the envelope, the directory
    failingCommit = at;
    EXPECT_EQ(store(*message), 10034U) << at;
    EXPECT_THAT(filesIn(out()), IsEmpty()) << at;
  }
  EXPECT_EQ(store(*message), 0U);
}

TEST_F(Store, ANameThatARivalTakesMeanwhileStaysTheRivals) {
  const auto message = identified("<A@x>");
  rivalName = native(out() + "A.RCP");
  rivalCommit = 2;  // that of the envelope
  EXPECT_EQ(store(*message), 11972U);
  EXPECT_THAT(filesIn(out()), ElementsAre("A.RCP"));
  EXPECT_EQ(fs::file_size(rivalName), 6U);
}

// A mail that is not whole comes with a status; one that does not come stays.
TEST_F(Store, WhicheverAllocationFailsNoMailIsLostOrHalfDelivered) {
  const std::string whole = load(PLAIN);
  EXPECT_EQ(whole.find("status"), std::string::npos);
  failing::eachAllocation([&](int at, const auto& during) {
    put("M", PLAIN);
    std::unique_ptr<GMA_Message> message;
    unsigned int status = 0;
    std::optional<std::string> failure;
    during([&] { failure = GENCatch([&] { message.reset(m_office->nextMessage(status)); }); });
    EXPECT_TRUE(ForeignLock(in()).held) << at;
    EXPECT_NE(message != nullptr, failure.has_value()) << at;
    if (failure) {
      EXPECT_THAT(*failure, testing::StartsWith("!!Assert: Null pointer")) << at;
      EXPECT_THAT(filesIn(in()), ElementsAre("M.MSG", "M.RCP")) << at;
    } else if (status == 0) {
      EXPECT_EQ(describe(*message), whole) << at;
    }
  });
  failing::eachAllocation([&](int at, const auto& during) {
    const auto message = identified("<A@x>");
    message->setBody(newContent("text\r\n"));
    unsigned int status = 0;
    std::optional<std::string> failure;
    during([&] { failure = GENCatch([&] { message->storeMessage(status); }); });
    EXPECT_TRUE(ForeignLock(out()).held) << at;
    const bool isDelivered = !failure && status == 0;
    EXPECT_EQ(filesIn(out()).size(), isDelivered ? 2U : 0U) << at;
    fs::remove(native(out() + "A.MSG"));
    fs::remove(native(out() + "A.RCP"));
  });
  const std::string receiver = in() + "QDXRECVR\\";
  failing::eachAllocation([&](int at, const auto& during) {
    put("M", PLAIN);
    unsigned int status = 0;
    const auto message = next(status);
    std::optional<std::string> failure;
    during([&] { failure = GENCatch([&] { message->save(nullptr, status); }); });
    EXPECT_THAT(failure.value_or("!!Assert"), testing::StartsWith("!!Assert")) << at;
    const bool isSaved = !failure && status == 0;
    fs::create_directory(native(receiver));  // unless it was made
    EXPECT_EQ(filesIn(receiver).size(), isSaved ? 2U : 0U) << at;
    fs::remove_all(native(receiver));
  });
  takeLog();
}

// A host that only knows statuses and assertions must get no std::bad_alloc from any slot.
TEST_F(Store, ASlotThatRunsOutOfMemoryAsserts) {
  const std::string file = in() + "krx.ini";
  writeFile(file, "[PO]\nPODownFile = " + in() + "down.txt\nSourceDir = " + in() +
                      "\nDestDir = " + out() + "\nMailDomain = x\nContainerClass = y\n");
  int failures = 0;
  failing::eachAllocation([&](int at, const auto& during) {
    PFA_Profile profile(file.c_str());
    KRX_PostOffice office(&m_group, "PO");
    unsigned int status = 0;
    std::optional<std::string> failure;
    during([&] {
      failure = GENCatch([&] {
        office.configure(profile, status);
        office.open(status);
        office.close(status);
      });
    });
    failures += failure ? 1 : 0;
    EXPECT_THAT(failure.value_or("!!Assert"), testing::StartsWith("!!Assert")) << at;
    EXPECT_TRUE(failure || status == 0) << at << ' ' << status;
  });
  EXPECT_GT(failures, 0);
  failing::eachAllocation([&](int at, const auto& during) {
    GMA_PostOffice* made = nullptr;
    unsigned int status = 0;
    std::optional<std::string> failure;
    during([&] {
      failure = GENCatch([&] {
        KRX_GetMailAccessObject(nullptr, &m_group, "PO", LOG_globalLog(), &made, status);
      });
    });
    EXPECT_THAT(failure.value_or("!!Assert"), testing::StartsWith("!!Assert")) << at;
    EXPECT_TRUE(failure || status == (made != nullptr ? 0U : 11970U)) << at << ' ' << status;
    delete made;
  });
  takeLog();
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
