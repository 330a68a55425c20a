// The vocabulary of the connector's tests: a spool of its own, post offices over it, mails written
// with "\n", and one printed form of a loaded message.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "gma/GMAPOGRP.h"
#include "krx/krxmsg.h"
#include "krx/krxpo.h"
#include "plat/PlatTerminal.h"

namespace krxtest {

// What the global log has received since the last call, one line an entry: "11:1 text".
std::vector<std::string> takeLog();
// The same as one text.
std::string takeLogText();

std::string withCrLf(const std::string& text);
std::string withLf(const std::string& text);  // CR LF shown as "\n"

void writeFile(const std::string& path, const std::string& content);
std::string readFile(const std::string& path);                   // empty when there is none
std::vector<std::string> filesIn(const std::string& directory);  // sorted, without point names

// One line a header ("TO| a@b"), address, and part: `body "title" MIME_Text: ...`, children
// indented.
std::string describe(GMA_Message& message);
std::string content(DAC_BaseDataAccess& data);
DAC_BaseDataAccess* newContent(const std::string& text);

// A spool directory pair and an open post office over it.
class Spool : public testing::Test {
 protected:
  Spool();

  std::string in() const { return m_directory.path() + "in\\"; }
  std::string out() const { return m_directory.path() + "out\\"; }
  // Writes a pair; "\n" becomes CR LF. An empty envelope means a plain one for `name`.
  void put(const std::string& name, const std::string& message, const std::string& envelope = "");
  // The next message, however loading went.
  std::unique_ptr<GMA_Message> next(unsigned int& status);
  // Puts the pair "M" and fetches it, which must succeed.
  std::unique_ptr<GMA_Message> fetched(const std::string& message,
                                       const std::string& envelope = "");
  // Puts the message, loads it and describes it ("status N" first when that is not 0).
  std::string load(const std::string& message, const std::string& envelope = "");
  static unsigned int store(GMA_Message& message);
  // The file of a stored pair, by the message and by its base name.
  std::string outMessage(const std::string& name) const {
    return withLf(readFile(out() + name + ".MSG"));
  }
  std::string outEnvelope(const std::string& name) const {
    return withLf(readFile(out() + name + ".RCP"));
  }
  // Puts, loads and stores it: the text of the message file that came out, with "\n".
  std::string roundTrip(const std::string& message, const std::string& envelope = "");

  plat::TemporaryDirectory m_directory;
  GMA_POGroup m_group;
  std::unique_ptr<KRX_PostOffice> m_office;
};

std::string baseName(const GMA_Message& message);  // of the message's pair

}  // namespace krxtest
