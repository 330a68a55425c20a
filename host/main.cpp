// krxhost: a real, small host for the connector, what an operator runs and a host developer reads.
#include <cstdio>

#include <CLI/CLI.hpp>

#include "gen/GENCATCH.h"
#include "host/Config.h"
#include "host/Exit.h"
#include "host/List.h"
#include "host/Log.h"
#include "host/Module.h"
#include "host/Notice.h"
#include "host/PostOffices.h"
#include "host/Run.h"
#include "host/Send.h"
#include "host/Show.h"
#include "pfa/PFAPROF.h"
#include "plat/PlatFile.h"
#include "plat/PlatMemory.h"

namespace host {
namespace {

// What a command over a configuration needs: the profile, the log, the module, the post offices.
class Session {
 public:
  Session(const std::string& configFile, unsigned int terminalLevel) {
    openProfile(m_profile, configFile);
    m_config = readConfig(m_profile, configFile);
    configureLog(terminalLevel);
    m_module.emplace();
    m_postOffices.emplace(*m_module, m_profile, m_config, m_log);
  }
  PostOffices& postOffices() { return *m_postOffices; }
  const Config& config() const { return m_config; }
  LOG_Logging& log() { return m_log; }
  // Once all is configured, a configured log speaks alone.
  void leaveTerminalToLog() {
    if (!m_config.logSection.empty()) {
      m_terminal->setMuted(true);
    }
  }

 private:
  void configureLog(unsigned int terminalLevel) {
    if (!m_config.logSection.empty()) {
      unsigned int status = 0;
      m_log.configure(m_profile, m_config.logSection.c_str(), status);
      if (status != 0) {
        throw Error(configuration, "The log section \"" + m_config.logSection +
                                       "\" cannot be used, status " + std::to_string(status) + ".");
      }
    }
    auto terminal = std::make_unique<TerminalStream>(TerminalStream::Output::error, terminalLevel);
    m_terminal = terminal.get();
    if (!attachToFreeSlot(m_log, std::move(terminal))) {
      throw Error(configuration, "The log uses all of the streams 0 to 3; one must stay free.");
    }
  }

  PFA_Profile m_profile;
  Config m_config;
  LOG_Logging m_log;
  TerminalStream* m_terminal = nullptr;
  std::optional<Module> m_module;
  std::optional<PostOffices> m_postOffices;
};

// The log stays bound in the libraries until the process ends, and so does all that writes to it.
Session& session(const std::string& configFile, unsigned int terminalLevel) {
  static Session* theSession = nullptr;
  theSession = new Session(configFile, terminalLevel);
  return *theSession;
}

int runCommand(const std::string& configFile, bool once, const NoticeFiles& notices) {
  Session& all = session(configFile, LOG_Logging::BRIEF);
  all.postOffices().refuseRings();
  all.postOffices().lockSources();
  all.leaveTerminalToLog();
  Runner runner(all.postOffices(), all.config(), all.log(), notices);
  return runner.run(once);
}

int checkCommand(const std::string& configFile) {
  Session& all = session(configFile, LOG_Logging::DEBUG);
  all.postOffices().refuseRings();
  all.postOffices().printDirectories();
  if (plat::commitDisabled()) {
    std::printf("Warning: KRX_COMMIT=0, mail is not brought to stable storage.\n");
  }
  std::printf("%zu post offices are configured.\n", all.config().postOffices.size());
  return Exit::done;
}

int listCommand(const std::string& configFile, const ListOptions& options) {
  return list(session(configFile, LOG_Logging::BRIEF).postOffices(), options);
}

int retryCommand(const std::string& configFile, const std::string& office,
                 const std::string& name) {
  return retry(session(configFile, LOG_Logging::BRIEF).postOffices().find(office), name);
}

int sendCommand(const std::string& configFile, const SendOptions& options) {
  Session& all = session(configFile, LOG_Logging::BRIEF);
  return send(all.postOffices().find(options.postOffice), options);
}

void addConfig(CLI::App& command, std::string& file) {
  command.add_option("--config", file, "The profile that configures everything")->required();
}

void addNotices(CLI::App& command, NoticeFiles& files) {
  command.add_option("--prepend", files.prepend, "A template put before the body");
  command.add_option("--append", files.append, "A template put behind the body");
}

void addPair(CLI::App& command, PairOptions& pair) {
  command.add_option("--domain", pair.domain, "The mail domain")->capture_default_str();
  command.add_option("--container", pair.containerClass, "The container class")
      ->capture_default_str();
  command.add_option("file", pair.envelope, "The envelope file (.RCP)")->required();
}

// What the commands are given, and the exit status of the one that ran.
struct CommandLine {
  std::string config;
  bool once = false;
  bool json = false;
  ListOptions listed;
  PairOptions pair;
  NoticeFiles notices;
  SendOptions sent;
  std::string office;
  std::string base;
  int result = Exit::done;
};

void addRunning(CLI::App& app, CommandLine& given) {
  CLI::App* run = app.add_subcommand("run", "Fetch, deliver and remove messages");
  addConfig(*run, given.config);
  run->add_flag("--once", given.once, "Drain what is there and end");
  addNotices(*run, given.notices);
  run->callback([&] { given.result = runCommand(given.config, given.once, given.notices); });
  CLI::App* check = app.add_subcommand("check", "Check the configuration");
  addConfig(*check, given.config);
  check->callback([&] { given.result = checkCommand(given.config); });
}

void addQueue(CLI::App& app, CommandLine& given) {
  CLI::App* list = app.add_subcommand("list", "List the waiting and the kept pairs");
  addConfig(*list, given.config);
  list->add_flag("--json", given.listed.json, "As JSON");
  list->add_flag("--incomplete", given.listed.incomplete,
                 "The files without their other half, instead");
  list->callback([&] { given.result = listCommand(given.config, given.listed); });
  CLI::App* retry = app.add_subcommand("retry", "Put a kept pair back by hand");
  addConfig(*retry, given.config);
  retry->add_option("--post-office", given.office, "The post office that keeps it")->required();
  retry->add_option("name", given.base, "The pair's base name")->required();
  retry->callback([&] { given.result = retryCommand(given.config, given.office, given.base); });
}

void addPairs(CLI::App& app, CommandLine& given) {
  CLI::App* show = app.add_subcommand("show", "Show what the connector makes of a pair");
  show->add_flag("--json", given.json, "The whole model as JSON");
  addPair(*show, given.pair);
  show->callback([&] { given.result = host::show(given.pair, given.json); });
  CLI::App* notify = app.add_subcommand("notify", "Put a notice into the body of a pair's message");
  addNotices(*notify, given.notices);
  notify->add_option("--out", given.pair.destination, "The directory that the new pair goes into")
      ->required();
  addPair(*notify, given.pair);
  notify->callback([&] { given.result = host::notify(given.pair, given.notices); });
}

void addSend(CLI::App& app, CommandLine& given) {
  CLI::App* send = app.add_subcommand("send", "Deliver a message of one's own");
  SendOptions& sent = given.sent;
  addConfig(*send, given.config);
  send->add_option("--post-office", sent.postOffice, "The post office that delivers")->required();
  send->add_option("--from", sent.from, "The sender")->required();
  send->add_option("--to", sent.to, "A recipient; repeatable")->required();
  send->add_option("--subject", sent.subject, "The subject");
  send->add_option("--body", sent.bodyFile, "A file with the text; - is standard input");
  send->add_option("--attach", sent.attachments, "A file to attach; repeatable");
  send->callback([&] { given.result = sendCommand(given.config, sent); });
}

int parseAndRun(int argc, char** argv) {
  CLI::App app("A host for the mail connector: fetches pairs of spool files and delivers them.");
  CommandLine given;
  app.set_version_flag("--version", KRX_VERSION);
  app.require_subcommand(1);
  addRunning(app, given);
  addQueue(app, given);
  addPairs(app, given);
  addSend(app, given);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? Exit::done : Exit::usage;
  }
  return given.result;
}

}  // namespace
}  // namespace host

int main(int argc, char** argv) {
  plat::keepFreedMemory();
  int result = host::Exit::inputOutput;
  const auto failure = GENCatch([&] {
    try {
      result = host::parseAndRun(argc, argv);
    } catch (const host::Error& error) {
      std::fprintf(stderr, "krxhost: %s\n", error.what());
      result = error.status();
    }
  });
  if (failure) {
    std::fprintf(stderr, "krxhost: %s\n", failure->c_str());
  }
  return result;
}
