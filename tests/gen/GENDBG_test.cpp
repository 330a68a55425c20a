// Tests of the debug kit: where lines go, prompts, dumps, watches, exit handlers, trace blocks and
// reported events.
#include "gen/GENDBG.h"

#include <fcntl.h>
#include <unistd.h>

#include "fl/Folder.h"
#include "gen/GENCATCH.h"
#include "gen/GENEVT.h"
#include "gen/GENTRC.h"
#include "gen/GENWNT.h"
#include "gen/Variable.h"
#include "gmock/gmock.h"

namespace {

// The settings are given, lines go to `output` (console lines do not), the console's input is what
// answer() says.
class DebugKit : public testing::Test {
 protected:
  DebugKit() {
    gen::setOutputCallback(&DebugKit::collect, this);
    GENSetStatus(0, 0, 0);
  }
  ~DebugKit() override {
    gen::setOutputCallback(nullptr, nullptr);
    gen::clearKeepOpen();
    if (m_input >= 0) {
      dup2(m_input, STDIN_FILENO);
      close(m_input);
    }
  }
  static void collect(void* self, const char* line) {
    static_cast<DebugKit*>(self)->output += std::string(line) + "\n";
  }
  void answer(const std::string& text) {
    if (m_input < 0) {
      m_input = dup(STDIN_FILENO);
    }
    const int answers = open(folder.write("answers", text).c_str(), O_RDONLY);
    dup2(answers, STDIN_FILENO);
    close(answers);
  }
  // What `operation` writes to the console, and what it throws.
  template <class Operation>
  static std::string console(Operation operation) {
    testing::internal::CaptureStdout();
    const auto failure = GENCatch(operation);
    return testing::internal::GetCapturedStdout() + (failure ? "{" + *failure + "}" : "");
  }
  std::string taken() { return std::exchange(output, ""); }

  Folder folder;
  std::string output;
  Variable file{"DebugOutputFile", folder.path("trace.txt")};
  Variable level{"TraceLevel", "2"};
  Variable limit{"TraceLimit", "4"};
  Variable stamp{"TimeStamp", "0"};

 private:
  int m_input = -1;
};

TEST_F(DebugKit, LinesGoToTheCallbackTheFileAndOnDemandTheConsole) {
  GENDisplayOpen();
  EXPECT_EQ(console([] { GENDebugPrint("%d%%", 5); }), "");
  EXPECT_EQ(console([] { GENDisplayPrint("both"); }), "both\n");
  GENDebugPrint("%s", std::string(5000, 'x').c_str());
  const std::string longest(4095, 'x');
  EXPECT_EQ(taken(),
            "DebugOutputFile Opened " + folder.path("trace.txt") + "\n5%\nboth\n" + longest + "\n");
  EXPECT_EQ(folder.read("trace.txt"),
            "DebugOutputFile Opened " + folder.path("trace.txt") + "\n5%\nboth\n" + longest + "\n");
  gen::setOutputCallback(nullptr, nullptr);
  EXPECT_EQ(console([] { GENDebugPrint("console"); }), "console\n");
}

TEST_F(DebugKit, AQuestionMarkTakesTheFirstFreeDigit) {
  const Variable numbered("DebugOutputFile", folder.path("t?"));
  folder.write("t0", "kept");
  folder.write("t1", "kept");
  GENDisplayOpen();
  EXPECT_EQ(taken(), "DebugOutputFile Opened " + folder.path("t2") + "\n");
  for (char digit = '2'; digit <= '9'; ++digit) {
    folder.write(std::string("t") + digit, "old");
  }
  gen::closeOutput();
  GENDisplayOpen();
  EXPECT_EQ(taken(), "DebugOutputFile Opened " + folder.path("t9") + "\n");
  EXPECT_EQ(folder.read("t0") + folder.read("t8"), "keptold");
  gen::closeOutput();
  const Variable nowhere("DebugOutputFile", folder.path("none/t"));
  GENDisplayOpen();
  EXPECT_EQ(taken(), "DebugOutputFile Failed " + folder.path("none/t") + "\n");
}

TEST_F(DebugKit, StringsAreAskedForUntilTheyFit) {
  char text[5] = "dflt";
  const auto read = [&](bool useDefault) {
    return console([&] { gen::readSettingString("KrxTest", sizeof text, text, useDefault); });
  };
  answer("toolong\n  ab \r\n\n");
  EXPECT_EQ(read(false), "\nEnter string for 'KrxTest': \nEnter string for 'KrxTest': ");
  EXPECT_EQ(std::string(text, 5), std::string("ab \0\0", 5));
  EXPECT_EQ(read(true), "\nEnter string for 'KrxTest' ['ab ']: ");
  EXPECT_STREQ(text, "ab ");
  const Variable given("KrxTest", " \tenv");
  EXPECT_EQ(read(false), "");
  EXPECT_STREQ(text, "env");
}

TEST_F(DebugKit, NumbersAreTheLeadingDigitsOfAnAnswer) {
  std::int32_t number = 0;
  const auto read = [&](bool hasDefault) {
    return console([&] { number = gen::readSettingNumber("KrxTest", 7, hasDefault); });
  };
  answer("x\n12ab\n\n-1\n99999999999\n");
  EXPECT_EQ(read(false), "\nEnter value for 'KrxTest': \nEnter value for 'KrxTest': ");
  EXPECT_EQ(number, 12);
  EXPECT_EQ(read(true), "\nEnter value for 'KrxTest' [7]: ");
  EXPECT_EQ(number, 7);
  read(true);
  EXPECT_EQ(number, 7);
  read(true);
  EXPECT_EQ(number, 2147483647);
  EXPECT_EQ(read(true), "\nEnter value for 'KrxTest' [7]: {Exit from GENInputString ()}");
}

TEST_F(DebugKit, AnAnswerIsTakenFromTheFirstHundredCharacters) {
  char text[200];
  answer(std::string(90, ' ') + std::string(50, 'x') + "\n");
  console([&] { EXPECT_EQ(GENInputString("?", sizeof text, text), 10U); });
  EXPECT_EQ(std::string(text, sizeof text), std::string(10, 'x') + std::string(190, '\0'));
}

TEST_F(DebugKit, TheEndOfTheInputRunsTheExitHandlersNewestFirst) {
  static std::string journal;
  journal.clear();
  gen::addExitHandler([](void* name) { journal += static_cast<const char*>(name); },
                      const_cast<char*>("first "));
  gen::addExitHandler(
      [](void*) {
        journal += "second ";
        char text[5];
        GENInputString("again", sizeof text, text);
      },
      nullptr);
  answer("");
  char text[5];
  EXPECT_EQ(console([&] { GENInputString("?", sizeof text, text); }),
            "\n?\nagain{Exit from GENInputString ()}");
  EXPECT_EQ(journal, "second first ");
}

TEST_F(DebugKit, ADumpShowsOnlyTheBytesThatItWasGiven) {
  const char bytes[] = "AB\x01\x7F\xC1\xFFgh\x20z";
  gen::hexDump("T ", "label", 10, bytes, &DebugKit::collect, this);
  char header[80];
  std::snprintf(header, sizeof header, "T label: Address %p, Length 10\n",
                static_cast<const void*>(bytes));
  EXPECT_EQ(output, std::string(header) +
                        "T 41  42  01  7F  C1  FF  67  68    |AB^^A^gh|\n"
                        "T 20  7A                            | z|\n");
}

TEST_F(DebugKit, AChangedWatchIsAnAssertionAtTheBlockThatNoticesIt) {
  char data[] = "\xFF\x01";
  const gen::Watch* watched = gen::watch(data, 2);
  gen::checkWatches("block", 1);
  data[0] = 5;
  EXPECT_EQ(GENCatch([] { gen::checkWatches("block", 3); }),
            "!!Assert: Watched data is changed in block at 3");
  EXPECT_EQ(GENCatch([] { GEN_TraceBlock entered("inner", 1); }),
            "!!Assert: Watched data is changed in inner at 1");
  gen::unwatch(watched);
  gen::checkWatches("block", 2);
}

TEST_F(DebugKit, BlocksAreIndentedByDepthAndTellTheStatus) {
  gen::setKeepOpen();
  GEN_TraceBlock initialised("", 9);
  taken();
  {
    GEN_TraceBlock outer("outer", 0);
    GEN_TraceBlock inner("inner", 2);
    GEN_TraceBlock silent("silent", 3);
    silent.print("%s", "nothing");
    inner.print("%d items", 3);
    GENSetStatus(17, -1, 2);
  }
  EXPECT_EQ(output,
            "001|  >> outer\n002|    >> inner\n002|    -- 3 items\n"
            "002|    << inner, Status 17 (4294967295,2)\n"
            "001|  << outer, Status 17 (4294967295,2)\n");
}

TEST_F(DebugKit, ATriggerRaisesTheLevelForItsBlockUpToTheLimit) {
  gen::setKeepOpen();
  GEN_TraceBlock initialised("", 9);
  taken();
  {
    GEN_TraceBlock raised("raised", 4, 9);
    gen::traceIfOn(4, "%s", "entry");
    raised.dump("d", "z", 1);
  }
  gen::traceIfOn(3, "%s", "nothing");
  EXPECT_THAT(output, testing::MatchesRegex("004\\|  >> raised .trigger 4.\n"
                                            "004\\|  -- entry\n"
                                            "004\\|  d: Address .*, Length 1\n"
                                            "004\\|  7A +\\|z\\|\n"
                                            "004\\|  << raised, Status 0 .0,0.\n"));
}

TEST_F(DebugKit, TheFileClosesWithTheOutermostBlockUnlessItIsKept) {
  GEN_TraceBlock initialised("", 9);
  for (const bool kept : {true, false}) {
    kept ? gen::setKeepOpen() : gen::clearKeepOpen();
    GENDisplayOpen();
    { GEN_TraceBlock block("block", 1); }
    GENDebugPrint("after");
    EXPECT_EQ(folder.read("trace.txt").find("after") != std::string::npos, kept);
  }
}

TEST_F(DebugKit, AnExceptionPassesABlockWhoseWatchHasChangedAndWhoseOutputFails) {
  char data[] = "x";
  const gen::Watch* watched = gen::watch(data, 1);
  const auto failing = [&] {
    GEN_TraceBlock block("block", 1);
    data[0] = 'y';
    gen::setOutputCallback([](void*, const char*) { GENAssertText("second", "TEST", 2); }, nullptr);
    GENAssertText("first", "TEST", 1);
  };
  EXPECT_EQ(GENCatch(failing), "!!Assert: first in TEST at 1");
  gen::unwatch(watched);
}

TEST_F(DebugKit, TheStatusReportFillsItsValuesIn) {
  GENReportStatus();
  GENSetStatus(4, 1, 2, "ignored");
  GENReportStatus();
  EXPECT_EQ(output, "Value out of range\n");
}

TEST_F(DebugKit, EventsAreReportedOnlyUnderASource) {
  const Variable log("KRX_EVENTLOG", folder.path("events"));
  gen::reportEvent(1, 1, 1, "lost");
  gen::setEventSource("A source name of more than 31 characters", 7, 99);
  gen::reportEvent(2, 3, 4, "%s", "100%n");
  gen::reportEventDefault(3, "%s", std::string(2000, 'x').c_str());
  GENCatch([] { GENAssert(4, "TEST", 5); });
  gen::setEventSource(nullptr, 0, 0);
  GENCatch([] { GENAssert(4, "TEST", 6); });
  const std::string source = R"("source": "A source name of more than 31 c", )";
  const std::string events = folder.read("events");
  EXPECT_THAT(events, testing::HasSubstr(source + R"("type": "warning", "category": 3, "id": 4, )"
                                                  R"("strings": ["100%n"])"));
  EXPECT_THAT(events, testing::HasSubstr(R"("type": "information", "category": 7, "id": 99, )"
                                         R"("strings": [")" +
                                         std::string(1023, 'x') + R"("])"));
  EXPECT_THAT(events, testing::HasSubstr(R"("type": "error", "category": 7, "id": 99, )"
                                         R"("strings": ["!!Assert: Value out of range in TEST at )"
                                         R"(5"])"));
  EXPECT_EQ(std::count(events.begin(), events.end(), '\n'), 3);
}

}  // namespace
