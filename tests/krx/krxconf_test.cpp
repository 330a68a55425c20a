#include <gmock/gmock.h>

#include <filesystem>

#include "krx/Support.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatPath.h"

namespace krxtest {
namespace {

using testing::ElementsAre;

class Configuration : public Spool {
 protected:
  Configuration() : m_fresh(&m_group, "PO") {}

  unsigned int give(const std::string& name, const std::string& value) {
    unsigned int status = 0;
    m_fresh.configDirective(name.c_str(), value.c_str(), status);
    return status;
  }
  unsigned int validate() {
    unsigned int status = 0;
    m_fresh.validate(status);
    return status;
  }
  void giveAll() {
    EXPECT_EQ(give("SourceDir", in()), 0U);
    EXPECT_EQ(give("DestDir", out()), 0U);
    EXPECT_EQ(give("MailDomain", "here"), 0U);
    EXPECT_EQ(give("ContainerClass", "Class"), 0U);
  }
  // The status of configuring from a profile with these lines in section [PO].
  unsigned int configure(const std::string& lines) {
    const std::string path = m_directory.path() + "krx.ini";
    writeFile(path, "[PO]\n" + lines);
    PFA_Profile profile(path.c_str());
    EXPECT_EQ(profile.openStatus(), 0U);
    unsigned int status = 0;
    m_fresh.configure(profile, status);
    return status;
  }

  KRX_PostOffice m_fresh;
};

TEST_F(Configuration, DirectiveNamesIgnoreCaseAndUnknownOnesAreRefused) {
  EXPECT_EQ(give("sourcedir", "x"), 0U);
  EXPECT_EQ(m_fresh.sourceDirectory(), "x");
  EXPECT_EQ(give("SourceDirs", "x"), 11967U);
  EXPECT_THAT(takeLog(), ElementsAre("11:1 Error in configuration section PO, unrecognised "
                                     "configuration directive \"SourceDirs\"."));
}

TEST_F(Configuration, ASecondValueIsRefusedAndTheFirstStays) {
  const std::pair<const char*, unsigned int> once[] = {
      {"SourceDir", 11965}, {"DestDir", 11966},           {"MailDomain", 11983},
      {"ContainerClass", 11991}, {"RasPhoneBookEntry", 11915}, {"RasUserName", 11913},
      {"RasPassword", 11911}};
  for (const auto& [name, status] : once) {
    EXPECT_EQ(give(name, "first"), 0U);
    EXPECT_EQ(give(name, "second"), status);
  }
  EXPECT_EQ(m_fresh.sourceDirectory(), "first");
  EXPECT_THAT(
      takeLog(),
      ElementsAre(
          "11:1 Error in configuration section PO, duplicate specification of source directory.",
          "11:1 Error in configuration section PO, duplicate specification of destination "
          "directory.",
          "11:1 Error in configuration section PO, duplicate specification of mail domain.",
          "11:1 Error in configuration section PO, duplicate specification of ContainerClass.",
          "11:1 Error in configuration section PO, duplicate specification of RasPhoneBookEntry.",
          "11:1 Error in configuration section PO, duplicate specification of RasUserName.",
          "11:1 Error in configuration section PO, duplicate specification of RasPassword."));
}

TEST_F(Configuration, DialTextsAreLimitedTo256Characters) {
  const std::string longest(256, 'x');
  EXPECT_EQ(give("RasUserName", longest + "y"), 11914U);
  EXPECT_EQ(give("RasPhoneBookEntry", longest + "y"), 11916U);
  EXPECT_EQ(give("RasPassword", longest + "y"), 11912U);
  const std::vector<std::string> log = takeLog();
  EXPECT_EQ(log[1], "11:1 Error in configuration section PO, RasPhoneBookEntry name \"" + longest +
                        "y\" is too long.");
  EXPECT_EQ(give("RasUserName", longest), 0U);
}

TEST_F(Configuration, NumbersOutOfRangeAreToldAndReset) {
  EXPECT_EQ(give("RasRetryCount", "0"), 11927U);
  EXPECT_EQ(give("RasRetryCount", "21"), 11927U);
  EXPECT_EQ(give("RasRetryCount", "20"), 0U);
  EXPECT_EQ(give("RasRetryDelay", "181"), 11926U);
  EXPECT_EQ(give("RasRetryDelay", "180"), 0U);
  EXPECT_EQ(give("RasRetryDelay", "30x"), 11926U);
  EXPECT_EQ(give("RasIdleTime", "0"), 11918U);
  EXPECT_EQ(give("RasIdleTime", ""), 11918U);
  EXPECT_THAT(
      takeLog(),
      ElementsAre("1:1 Error in configuration section PO,RasRetryCount must be between 1 and 20",
                  "1:1 Error in configuration section PO,RasRetryCount must be between 1 and 20",
                  "1:1 Error in configuration section PO,RasRetryDelay cannot be zero",
                  "1:1 Error in configuration section PO, Invalid RasRetryDelay 30x",
                  "1:1 Error in configuration section PO,RasIdleTime cannot be zero",
                  "1:1 Error in configuration section PO, Invalid RasIdleTime "));
}

TEST_F(Configuration, HalfAQuotedCommandIsNotTaken) {
  EXPECT_EQ(give("RasCommand", "\"send -a"), 0U);
  EXPECT_THAT(takeLog(), ElementsAre("11:1 Error in configuration section PO, RasCommand is not a "
                                     "complete quoted string."));
  EXPECT_EQ(give("RasCommand", "\"send\""), 0U);
  EXPECT_EQ(takeLogText(), "");
}

TEST_F(Configuration, DirectoriesGetTheirSeparator) {
  std::string source = in();
  source.pop_back();
  giveAll();
  KRX_PostOffice office(&m_group, "PO");
  unsigned int status = 0;
  office.configDirective("SourceDir", (plat::toNative(source) + "/").c_str(), status);
  office.validate(status);
  EXPECT_EQ(office.sourceDirectory(), (plat::toNative(source) + "\\").c_str());
  EXPECT_EQ(status, 11964U);
  EXPECT_EQ(validate(), 0U);
}

TEST_F(Configuration, WhatIsMissingIsNamed) {
  EXPECT_EQ(validate(), 11963U);
  give("SourceDir", in());
  EXPECT_EQ(validate(), 11964U);
  give("DestDir", out());
  EXPECT_EQ(validate(), 11974U);
  give("MailDomain", "here");
  EXPECT_EQ(validate(), 11991U);
  EXPECT_THAT(
      takeLog(),
      ElementsAre("11:1 Error in configuration section PO, no source directory has been specified.",
                  "11:1 Error in configuration section PO, no destination directory has been "
                  "specified.",
                  "11:1 Error in configuration section PO, no mail domain has been specified.",
                  "11:1 Error in configuration section PO, no ContainerClass has been specified."));
}

TEST_F(Configuration, UnreachableAndInvalidDirectoriesDiffer) {
  give("SourceDir", m_directory.path() + "missing");
  EXPECT_EQ(validate(), 11957U);
  KRX_PostOffice other(&m_group, "PO");
  unsigned int status = 0;
  other.configDirective("SourceDir", in().c_str(), status);
  other.configDirective("DestDir", (m_directory.path() + "o*t").c_str(), status);
  other.validate(status);
  EXPECT_EQ(status, 11960U);
  writeFile(m_directory.path() + "file", "");
  KRX_PostOffice third(&m_group, "PO");
  status = 0;
  third.configDirective("SourceDir", (m_directory.path() + "file").c_str(), status);
  third.validate(status);
  EXPECT_EQ(status, 11959U);
  const std::string missing = m_directory.path() + "missing\\";
  const std::vector<std::string> log = takeLog();
  EXPECT_EQ(log[0], "11:1 PostOffice \"PO\" Cannot access source directory \"" + missing + "\".");
  EXPECT_EQ(log[1], "11:1 PostOffice \"PO\" destination directory \"" + m_directory.path() +
                        "o*t\\\" invalid.");
  EXPECT_EQ(log[2],
            "11:1 PostOffice \"PO\" Source directory \"" + m_directory.path() + "file\\\" invalid.");
}

TEST_F(Configuration, AProfileSectionConfiguresAndAnUnreachableDirectoryCanBeForgiven) {
  EXPECT_EQ(configure("SourceDir = " + in() + "\nDestDir = " + m_directory.path() +
                      "missing\nMailDomain = here\nContainerClass = Class\n"
                      "MustOpenAtStart = no\n"),
            0U);
  EXPECT_EQ(takeLog().size(), 1U);
  EXPECT_FALSE(m_fresh.isOpen());
  unsigned int status = 0;
  m_fresh.open(status);
  EXPECT_TRUE(m_fresh.isOpen());
}

TEST_F(Configuration, EveryConfigurationErrorIsLogged) {
  EXPECT_EQ(configure("SourceDir:3 = x\n"), 1834U);
  EXPECT_EQ(configure("RasUserName = " + std::string(200, 'x') + "\n"), 1820U);
  const std::vector<std::string> log = takeLog();
  ASSERT_EQ(log.size(), 2U);
  EXPECT_NE(log[0].find("Error in configuration section PO, entry \"SourceDir"), std::string::npos);
  EXPECT_NE(log[1].find("is not valid, status 1820."), std::string::npos);
}

}  // namespace
}  // namespace krxtest
