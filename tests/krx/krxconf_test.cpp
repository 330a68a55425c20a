// The directives of a post office and their validation.
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
  // The status of a post office with these directories, and what it logged.
  std::string checked(const std::string& source, const std::string& destination) {
    KRX_PostOffice office(&m_group, "PO");
    unsigned int status = 0;
    office.configDirective("SourceDir", source.c_str(), status);
    office.configDirective("DestDir", destination.c_str(), status);
    office.validate(status);
    return std::to_string(status) + " " + takeLogText();
  }
  static std::string error(const std::string& text) {
    return "11:1 Error in configuration section PO, " + text;
  }

  KRX_PostOffice m_fresh;
};

TEST_F(Configuration, DirectiveNamesIgnoreCaseAndUnknownOnesAreRefused) {
  EXPECT_EQ(give("sourcedir", "x"), 0U);
  EXPECT_EQ(m_fresh.sourceDirectory(), "x");
  EXPECT_EQ(give("SourceDirs", "x"), 11967U);
  EXPECT_THAT(takeLog(),
              ElementsAre(error("unrecognised configuration directive \"SourceDirs\".")));
}

TEST_F(Configuration, TextsAreGivenOnceAndThoseOfTheDialUpLineHaveALimit) {
  const std::string longest(256, 'x');
  for (const auto& [name, twice, tooLong] :
       {std::tuple("SourceDir", 11965U, 0U), std::tuple("DestDir", 11966U, 0U),
        std::tuple("MailDomain", 11983U, 0U), std::tuple("ContainerClass", 11991U, 0U),
        std::tuple("RasPhoneBookEntry", 11915U, 11916U), std::tuple("RasUserName", 11913U, 11914U),
        std::tuple("RasPassword", 11911U, 11912U)}) {
    EXPECT_EQ(give(name, longest + (tooLong != 0 ? "y" : "")), tooLong);
    EXPECT_EQ(give(name, longest), tooLong != 0 ? 0 : twice);
    EXPECT_EQ(give(name, "second"), twice);
  }
  EXPECT_EQ(m_fresh.sourceDirectory(), longest.c_str());
  const std::vector<std::string> log = takeLog();
  EXPECT_EQ(log[0], error("duplicate specification of source directory."));
  EXPECT_EQ(log[8], error("RasPhoneBookEntry name \"" + longest + "y\" is too long."));
}

TEST_F(Configuration, NumbersOutOfRangeAreToldAndReset) {
  for (const auto& [name, value, status, text] :
       {std::tuple("RasRetryCount", "0", 11927U, ",RasRetryCount must be between 1 and 20"),
        std::tuple("RasRetryCount", "21", 11927U, ",RasRetryCount must be between 1 and 20"),
        std::tuple("RasRetryDelay", "181", 11926U, ",RasRetryDelay cannot be zero"),
        std::tuple("RasRetryDelay", "30x", 11926U, ", Invalid RasRetryDelay 30x"),
        std::tuple("RasIdleTime", "0", 11918U, ",RasIdleTime cannot be zero"),
        std::tuple("RasIdleTime", "", 11918U, ", Invalid RasIdleTime ")}) {
    EXPECT_EQ(give(name, value), status);
    EXPECT_EQ(takeLogText(), "1:1 Error in configuration section PO" + std::string(text) + "\n");
  }
  EXPECT_EQ(give("RasRetryCount", "20") + give("RasRetryDelay", "180"), 0U);
}

TEST_F(Configuration, HalfAQuotedCommandIsNotTaken) {
  EXPECT_EQ(give("RasCommand", "\"send -a"), 0U);
  EXPECT_THAT(takeLog(), ElementsAre(error("RasCommand is not a complete quoted string.")));
  EXPECT_EQ(give("RasCommand", "\"send\""), 0U);
  EXPECT_EQ(takeLogText(), "");
}

TEST_F(Configuration, WhatIsMissingIsNamedAndDirectoriesGetTheirSeparator) {
  unsigned int failed = 5;
  m_fresh.validate(failed);
  EXPECT_EQ(failed, 5U);
  const std::string source = plat::toNative(in());  // with a slash at its end
  EXPECT_EQ(validate(), 11963U);
  give("SourceDir", source);
  EXPECT_EQ(validate(), 11964U);
  EXPECT_EQ(m_fresh.sourceDirectory(), (source.substr(0, source.size() - 1) + "\\").c_str());
  give("DestDir", out().substr(0, out().size() - 1));
  EXPECT_EQ(validate(), 11974U);
  EXPECT_EQ(m_fresh.destinationDirectory(), out().c_str());
  give("MailDomain", "here");
  EXPECT_EQ(validate(), 11991U);
  EXPECT_THAT(takeLog(), ElementsAre(error("no source directory has been specified."),
                                     error("no destination directory has been specified."),
                                     error("no mail domain has been specified."),
                                     error("no ContainerClass has been specified.")));
}

TEST_F(Configuration, UnreachableAndInvalidDirectoriesDiffer) {
  const std::string here = m_directory.path();
  const std::string office = " 11:1 PostOffice \"PO\" ";
  writeFile(here + "file", "");
  EXPECT_EQ(checked(here + "file", out()),
            "11959" + office + "Source directory \"" + here + "file\\\" invalid.\n");
  EXPECT_EQ(checked(here + "gone", out()),
            "11957" + office + "Cannot access source directory \"" + here + "gone\\\".\n");
  EXPECT_EQ(checked(in(), here + "gone"),
            "11958" + office + "Cannot access destination directory \"" + here + "gone\\\".\n");
  EXPECT_EQ(checked(in(), here + "o*t"),
            "11960" + office + "destination directory \"" + here + "o*t\\\" invalid.\n");
}

TEST_F(Configuration, AProfileSectionConfiguresAndAnUnreachableDirectoryCanBeForgiven) {
  const std::string path = m_directory.path() + "krx.ini";
  writeFile(path, "[PO]\nSourceDir = " + in() + "\nDestDir = " + m_directory.path() +
                      "missing\nMailDomain = here\nContainerClass = Class\nMustOpenAtStart = no\n");
  PFA_Profile profile(path.c_str());
  unsigned int status = 0;
  m_fresh.configure(profile, status);
  EXPECT_EQ(takeLog().size(), 1U);
  m_fresh.open(status);
  EXPECT_EQ(status, 0U);
  EXPECT_TRUE(m_fresh.isOpen());
}

}  // namespace
}  // namespace krxtest
