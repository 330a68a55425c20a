// Tests of the header names. The HTTP names need a process of their own, since the name table is
// made once for the whole process.
#include "rfc/rfctable.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace {

std::string typesOf(std::initializer_list<const char*> names) {
  std::string types;
  for (const char* name : names) {
    types += std::to_string(rfc_header_type(name)) + " ";
  }
  return types;
}

TEST(HeaderNames, AreFoundInAnyLetterCaseOrByMoreThanTheirPrefix) {
  EXPECT_EQ(typesOf({"subject", "RESENT-MESSAGE-ID", "Content-disposition", "To", "bad-header"}),
            "0 13 92 28 82 ");
  EXPECT_EQ(typesOf({"", "Host", "Subjec", "Subject "}), "46 46 46 46 ");
  EXPECT_STREQ(rfc_header_name(29).c_str(), "From");
  EXPECT_STREQ(rfc_header_name(2).c_str(), "");
  EXPECT_EQ(typesOf({"X-Mailer", "x-a", "x-", "Xmailer", "X400-Content-Type", "x400-a", "X400-"}),
            "83 83 46 46 86 86 46 ");
}

void printTypes(const char* vocabulary) {
  rfc_build_header_table(vocabulary);
  rfc_build_header_table("SMTP");
  const std::string types =
      typesOf({"host", "Via", "Transfer-Encoding", "Subject", "Bad-Header", "X-a"});
  std::fprintf(stderr, "%s%s", types.c_str(), rfc_header_name(49).c_str());
  std::exit(0);
}

TEST(HeaderNamesDeathTest, TheFirstVocabularyStays) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(printTypes("http"), testing::ExitedWithCode(0), "148 161 126 46 82 83 Location");
  EXPECT_EXIT(printTypes("NEWS"), testing::ExitedWithCode(0), "46 46 46 46 82 83 ");
  EXPECT_EXIT(printTypes(nullptr), testing::ExitedWithCode(0), "46 46 46 0 82 83 ");
}

}  // namespace
