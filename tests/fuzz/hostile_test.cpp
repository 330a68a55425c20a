// What a sender or a user of the spool may try: files that are no mail, names that are paths, texts
// that are formats or lines, and inputs that once failed a fuzz target.
#include <filesystem>
#include <fstream>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/un.h>
#include <unistd.h>

#include "dac/DACMEMDA.h"
#include "krx/Support.h"
#include "plat/PlatPath.h"

namespace krxtest {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr char PLAIN[] = "Subject: x\n\ntext\n.\n";

class Hostile : public Spool {
 protected:
  std::string native(const std::string& name) const { return plat::toNative(in() + name); }
  void makeSocket(const std::string& name) const {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    native(name).copy(address.sun_path, sizeof address.sun_path - 1);
    const int made = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ASSERT_EQ(::bind(made, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    ::close(made);
  }
  bool nothingIsFetched() {
    unsigned int status = 0;
    return next(status) == nullptr && status == 0;
  }
  // Loads and stores a mail twice: the message files that came out.
  std::pair<std::string, std::string> storedTwice(const std::string& mail) {
    const std::string first = roundTrip(mail);
    for (const auto& entry : std::filesystem::directory_iterator(plat::toNative(out()))) {
      std::filesystem::remove(entry.path());
    }
    return {first, roundTrip(first)};
  }
};

TEST_F(Hostile, WhatIsNoRegularFileIsNeverOpenedNorRemoved) {
  for (const char* kind : {"LINK", "FIFO", "SOCKET", "DEVICE", "DIRECTORY"}) {
    put(kind, PLAIN);
    std::filesystem::remove(native(std::string(kind) + ".MSG"));
  }
  std::filesystem::create_symlink("/etc/passwd", native("LINK.MSG"));
  ASSERT_EQ(::mkfifo(native("FIFO.MSG").c_str(), 0666), 0);
  makeSocket("SOCKET.MSG");
  if (::mknod(native("DEVICE.MSG").c_str(), S_IFCHR | 0666, makedev(1, 5)) != 0) {
    std::filesystem::create_directory(native("DEVICE.MSG"));  // only root makes devices
  }
  std::filesystem::create_directory(native("DIRECTORY.MSG"));
  const std::vector<std::string> before = filesIn(in());
  EXPECT_TRUE(nothingIsFetched());
  EXPECT_EQ(filesIn(in()), before);
}

TEST_F(Hostile, AHardLinkIsMailAndItsOtherNameStays) {
  put("HARD", PLAIN);
  const std::string other = plat::toNative(m_directory.path()) + "other";
  std::filesystem::create_hard_link(native("HARD.MSG"), other);
  unsigned int status = 0;
  EXPECT_NE(next(status), nullptr);
  EXPECT_THAT(filesIn(in()), IsEmpty());
  EXPECT_TRUE(std::filesystem::exists(other));
}

TEST_F(Hostile, NamesOfAnyCharactersAndLengthNeitherStopTheSearchNorLeaveTheSpool) {
  const std::string odd[] = {std::string(251, 'x'), "..\\..\\up", "C:drive",
                             "a\x01\x1b[2J\nb",     "%s%n%s",     "*"};
  for (const std::string& name : odd) {
    for (const char* extension : {".RCP", ".MSG"}) {
      std::ofstream(plat::toNative(in()) + name + extension) << "Recipient: a@b\r\n";
    }
  }
  put("GOOD", PLAIN);
  bool good = false;
  unsigned int status = 0;
  for (int i = 0; i < 10; ++i) {
    const auto message = next(status);
    good = good || (message && std::string("GOOD.RCP") ==
                                   static_cast<KRX_Message&>(*message).envelopeFile().c_str());
  }
  EXPECT_TRUE(good);
  EXPECT_THAT(takeLogText(), Not(HasSubstr("\x1b")));
}

TEST_F(Hostile, FormatCharactersArriveAndLeaveAsTheyAre) {
  const std::string formats = "%s%n%x%%1$s";
  put("M",
      "From: " + formats + "\nSubject: " + formats +
          "\nMIME-Version: 1.0\nContent-Type: text/x; name=\"" + formats +
          "\"\nContent-Transfer-Encoding: " + formats + " " + formats + "\n\n" + formats + "\n.\n",
      "Message-ID: <" + formats + "@here>\nReturn-path: \"" + formats + "\"@a\nRecipient: r@b\n");
  unsigned int status = 0;
  const auto message = next(status);
  ASSERT_EQ(status, 0U);
  EXPECT_THAT(takeLogText(), HasSubstr(formats + " " + formats + "\" found"));
  message->dumpContents(formats.c_str());
  EXPECT_THAT(takeLogText(), HasSubstr(formats));
  message->storeMessage(status);
  EXPECT_EQ(status, 0U);
  EXPECT_THAT(outMessage("M"), HasSubstr("Subject: " + formats + "\n"));
}

TEST_F(Hostile, NoTextOfTheModelBeginsALineOfItsOwn) {
  const std::unique_ptr<GMA_Message> message(m_office->newMessage());
  const char* const evil = "x\r\nBcc: evil@x\n.\r\nEvil: 1";
  message->headers().add(GMA_Mhdr(gma::SUBJECT, evil));
  message->headers().add(GMA_Mhdr(gma::X_HEADER, evil, evil));
  message->headers().add(GMA_Mhdr(gma::BAD_FORMAT, evil));
  message->addAddress(GMA_Maddr(gma::TOADDR, evil, evil));
  for (const char* field : {"ContentTitle", "Content-Description", "Content-ID"}) {
    auto* item = new DAC_MemoryDataAccess;
    item->setStringAttribute(field, evil);
    message->addItem(item, false);
  }
  unsigned int status = 0;
  message->storeMessage(status);
  ASSERT_EQ(status, 0U);
  for (const std::string& name : filesIn(out())) {
    const std::string text = withLf(readFile(out() + name));
    EXPECT_THAT(text, Not(HasSubstr("\nBcc:"))) << text;
    EXPECT_THAT(text, Not(HasSubstr("\nEvil:"))) << text;
    EXPECT_EQ(text.find("\n.\n") == std::string::npos, name.back() == 'P') << text;
  }
}

TEST_F(Hostile, MalformedHeadersComeBackAsTheyWereStored) {
  const auto [first, second] = storedTwice(
      "F\nT\nBad-Header:o\n.\r?\n.\n\x01\rn\r?\rn\rn\nSubject: x\nBad-Header: y\n\ntext\n.\n");
  EXPECT_EQ(first, second);
  EXPECT_THAT(first, HasSubstr("Subject: x\nBad-Header: y\n"));
}

TEST_F(Hostile, OfTwoTypesOfAPartTheOneThatWasReadIsStored) {
  const auto [first, second] = storedTwice(
      "MIME-Version: 1.0\nContent-Type: multipart/mixed; boundary=b\n\n"
      "--b\nContent-Type:\nContent-Type: x\n\ntext\n"
      "--b\nContent-Type: text/plain\nContent-Type: image/png; name=a\n\ntext\n--b--\n.\n");
  EXPECT_EQ(first, second);
  EXPECT_THAT(first, HasSubstr("--b\nContent-Type: text/plain\n"));
}

}  // namespace
}  // namespace krxtest
