// The vocabulary of the connector's tests: a spool of its own, post offices over it, mails written
// with "\n", and one printed form of a loaded message.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

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
std::string readFile(const std::string& path);
bool fileExists(const std::string& path);
std::vector<std::string> filesIn(const std::string& directory);  // sorted, without point names

// One line a header ("TO| a@b"), address, attribute of interest and part:
// `body text "..."`, `item "title" MIME_Text view=raw "..."`, children indented.
std::string describe(GMA_Message& message);
std::string content(DAC_BaseDataAccess& data);
std::string childContent(DAC_BaseDataAccess& data, std::uint32_t index);

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
  // Puts the message, loads it and describes it ("status N" first when that is not 0).
  std::string load(const std::string& message, const std::string& envelope = "");
  // Puts, loads and stores it: the text of the message file that came out, with "\n".
  std::string roundTrip(const std::string& message, const std::string& envelope = "");
  std::string outMessage(const std::string& name) const {
    return withLf(readFile(out() + name + ".MSG"));
  }
  std::string outEnvelope(const std::string& name) const {
    return withLf(readFile(out() + name + ".RCP"));
  }
  std::unique_ptr<KRX_PostOffice> newOffice(const std::string& source,
                                            const std::string& destination);

  plat::TemporaryDirectory m_directory;
  GMA_POGroup m_group;
  std::unique_ptr<KRX_PostOffice> m_office;
};

}  // namespace krxtest
