// Pairs on their way: found and fetched, kept by save, removed, and delivered.
#include <chrono>
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "dac/DACMEMDA.h"
#include "gen/GENWNT.h"
#include "krx/Support.h"
#include "krx/krxmaddr.h"
#include "plat/PlatClock.h"
#include "plat/PlatLock.h"
#include "plat/PlatPath.h"
#include "scl/SCLEXCPT.h"

namespace krxtest {
namespace {

using std::chrono_literals::operator""s;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char PLAIN[] = "Subject: x\n\nbody\n.\n";

std::string nameOf(const GMA_Message& message) {
  return static_cast<const KRX_Message&>(message).envelopeFile().c_str();
}

class Fetch : public Spool {
 protected:
  ~Fetch() override { plat::setClock(nullptr); }

  // The name of the next message's envelope, or "none"; the pair is gone then.
  std::string nextName() {
    unsigned int status = 0;
    const auto message = next(status);
    EXPECT_EQ(status, 0U);
    return message ? nameOf(*message) : "none";
  }
  std::unique_ptr<GMA_Message> fetch(const std::string& name, const std::string& envelope = "") {
    put(name, PLAIN, envelope);
    unsigned int status = 0;
    auto message = next(status);
    EXPECT_EQ(status, 0U);
    return message;
  }
  static unsigned int store(GMA_Message& message) {
    unsigned int status = 0;
    message.storeMessage(status);
    return status;
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
  // Makes waiting cost no time.
  plat::ManualClock& stopClock() {
    plat::setClock(&m_clock);
    return m_clock;
  }

  plat::ManualClock m_clock{{884000000, 5}};
};

// The lock of a directory in another open file description.
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
  long handle = -1;
};

TEST_F(Fetch, APairIsReturnedAgainUntilItsMessageIsDestroyedOrTheFileIsMarked) {
  const auto first = fetch("A");
  put("B", PLAIN);
  EXPECT_EQ(nextName(), nameOf(*first));
  unsigned int status = 0;
  const auto second = next(status);
  EXPECT_EQ(nameOf(*second), "B.RCP");
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
  for (const std::string& name : {std::string("RO"), std::string("LINK"), std::string("FIFO"),
                                  std::string("ALONE"), std::string(".POINT"), std::string("a?b"),
                                  std::string("a\\..\\x"), std::string(251, 'x')}) {
    for (const char* extension : {".RCP", ".MSG"}) {
      std::ofstream(native(in()) + name + extension) << "Recipient: a@b\r\n";
    }
  }
  setMode("RO.RCP", 0444);
  for (const char* name : {"LINK.MSG", "FIFO.MSG", "ALONE.MSG"}) {
    std::filesystem::remove(native(in() + name));
  }
  std::filesystem::create_symlink(native(in() + "RO.MSG"), native(in() + "LINK.MSG"));
  ASSERT_EQ(::mkfifo(native(in() + "FIFO.MSG").c_str(), 0600), 0);
  std::filesystem::create_directory(native(in() + "DIR.RCP"));
  const std::vector<std::string> before = filesIn(in());
  EXPECT_EQ(nextName(), "none");
  put("GOOD", PLAIN);
  EXPECT_EQ(nextName(), "GOOD.RCP");
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
  for (const auto& [from, to] : {std::pair("A.RCP", "A.rcp"), std::pair("A.MSG", "A.msg")}) {
    put("A", PLAIN);
    std::filesystem::rename(native(in() + from), native(in() + to));
    EXPECT_NE(nextName(), "none");
    EXPECT_THAT(filesIn(in()), IsEmpty());
  }
}

TEST_F(Fetch, ALockedDirectoryIsWaitedForAndIsNoError) {
  put("A", PLAIN);
  stopClock();
  {
    const ForeignLock lock(in());
    ASSERT_TRUE(lock.held);
    EXPECT_EQ(nextName(), "none");
    EXPECT_EQ(m_clock.monotonicMilliseconds(), 49 * 2000);
  }
  EXPECT_EQ(nextName(), "A.RCP");
}

TEST_F(Fetch, APairThatCannotBeLoadedComesWithItsStatusAndGoes) {
  put("A", PLAIN, "no envelope\n");
  unsigned int status = 0;
  EXPECT_TRUE(next(status));
  EXPECT_EQ(status, 11981U);
  EXPECT_THAT(takeLog(), ElementsAre("11:1 Message A.RCP could not be loaded, status 11981."));
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

TEST_F(Fetch, APairThatCannotBeRemovedIsNotFetchedAgain) {
  auto message = fetch("A");
  setMode("A.RCP", 0444);
  setMode("A.MSG", 0444);
  message.reset();
  setMode("A.RCP", 0644);
  setMode("A.MSG", 0644);
  EXPECT_EQ(takeLog().size(), 2U);
  EXPECT_EQ(nextName(), "none");
  put("A", "Subject: another\n\nx\n");
  const std::string another = native(in() + "A.RCP");
  std::filesystem::last_write_time(another, std::filesystem::file_time_type::clock::now() + 1s);
  EXPECT_EQ(nextName(), "A.RCP");
}

TEST_F(Fetch, AMessageMayOutliveItsPostOffice) {
  auto message = fetch("A");
  m_office.reset();
  message.reset();
  EXPECT_THAT(filesIn(in()), IsEmpty());
}

class Save : public Fetch {
 protected:
  std::string receiver() const { return in() + "QDXRECVR\\"; }
};

TEST_F(Save, AMessageThatIsStoredUnderAnotherNameStillKeepsAndRemovesItsOwnPair) {
  auto message = fetch("A");
  writeFile(out() + "A.MSG", "somebody else's");
  EXPECT_EQ(store(*message), 0U);
  const std::string renamed = nameOf(*message);
  writeFile(in() + renamed, "a stranger's");
  EXPECT_EQ(save(*message), 0U);
  EXPECT_EQ(save(*message), 454U);
  message.reset();
  EXPECT_THAT(filesIn(in()), ElementsAre(renamed, "QDXRECVR"));
  EXPECT_THAT(filesIn(receiver()), ElementsAre("A.MSG", "A.RCP"));
  EXPECT_EQ(withLf(readFile(receiver() + "A.MSG")), PLAIN);
  EXPECT_EQ(readFile(out() + "A.MSG"), "somebody else's");
}

TEST_F(Save, AHalfCopyIsTakenBackAndWhatWasThereStays) {
  const auto message = fetch("A");
  std::filesystem::create_directory(native(in() + "QDXRECVR"));
  writeFile(receiver() + "A.MSG", "earlier");
  EXPECT_EQ(save(*message), 454U);
  EXPECT_THAT(filesIn(receiver()), ElementsAre("A.MSG"));
  EXPECT_EQ(readFile(receiver() + "A.MSG"), "earlier");
}

TEST_F(Save, ALinkedReceiverDirectoryIsRefused) {
  const auto message = fetch("A");
  std::filesystem::create_directory_symlink(native(out()), native(in() + "QDXRECVR"));
  EXPECT_EQ(save(*message), 454U);
  EXPECT_THAT(filesIn(out()), IsEmpty());
}

TEST_F(Save, NeedsAFetchedPair) {
  const std::unique_ptr<GMA_Message> message(m_office->newMessage());
  unsigned int status = 5;
  message->save(nullptr, status);
  EXPECT_EQ(status, 5U);
  EXPECT_THROW(save(*message), scl_exception_base*);
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
    return nameOf(*message).substr(0, nameOf(*message).size() - 4);
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
  stopClock();
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
  EXPECT_EQ(store(*fetch("KEEP", "Recipient: a@b\n")), 0U);
  EXPECT_EQ(outEnvelope("KEEP"), "Message-ID: <KEEP@here>\nReturn-path: \nRecipient: a@b\n");
}

TEST_F(Store, WhatARivalMakesMeanwhileIsNeitherUsedNorRemoved) {
  const auto renamed = identified("<ABC@x>");
  renamed->setBody(new Rival(out() + "ABC.MSG", Rival::BEFORE_CREATION));
  EXPECT_EQ(store(*renamed), 0U);
  EXPECT_NE(nameOf(*renamed), "ABC.RCP");
  EXPECT_EQ(readFile(out() + "ABC.MSG"), "theirs");
  const auto refused = identified("<DEF@x>");
  refused->setBody(new Rival(out() + "DEF.RCP", Rival::AFTER_CREATION));
  EXPECT_EQ(store(*refused), 11972U);
  EXPECT_EQ(readFile(out() + "DEF.RCP"), "theirs");
  EXPECT_FALSE(fileExists(out() + "DEF.MSG"));
}

TEST_F(Store, AFailureLeavesNoMessageFile) {
  const auto message = identified("<A@x>");
  stopClock();
  {
    const ForeignLock lock(out());
    EXPECT_EQ(store(*message), 11976U);
  }
  auto* body = new DAC_MemoryDataAccess;
  unsigned int status = 0;
  body->fill(40000, 'x', status);
  body->writeLine(0, "", status);
  message->setBody(body);
  EXPECT_EQ(store(*message), 10014U);
  message->clearContent();
  message->addAddress(KRX_Maddr(130, "a type without a field", "x"));
  EXPECT_THROW(store(*message), scl_exception_base*);
  EXPECT_THAT(filesIn(out()), IsEmpty());
}

TEST_F(Store, AThrowUnderTheLockReleasesItAndLeavesNoMessageFile) {
  const auto message = identified("<A@x>");
  message->addresses().add(Unwritable(gma::BCCADDR, "a", "b"));
  EXPECT_THROW(store(*message), scl_exception_base*);
  EXPECT_TRUE(ForeignLock(out()).held);
  EXPECT_THAT(filesIn(out()), ElementsAre("A.RCP"));
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

TEST_F(Store, DestroyingWhatWasNeverFetchedDeletesNothing) {
  put("A", PLAIN);
  EXPECT_EQ(storedAs("<A@x>"), "A");
  EXPECT_THAT(filesIn(in()), ElementsAre("A.MSG", "A.RCP"));
}

TEST_F(Store, FilesOfTheSpoolAreForOwnerAndGroup) {
  const mode_t mask = ::umask(0022);
  storedAs("<A@x>");
  save(*fetch("B"));
  ::umask(mask);
  struct stat made {};
  ASSERT_EQ(::stat(native(out() + "A.MSG").c_str(), &made), 0);
  EXPECT_EQ(made.st_mode & 0777, 0640U);
  ASSERT_EQ(::stat(native(in() + "QDXRECVR").c_str(), &made), 0);
  EXPECT_EQ(made.st_mode & 0777, 0750U);
}

}  // namespace
}  // namespace krxtest
