// Loads a private copy of a pair and prints what became of it.
#include "host/Show.h"

#include <cstdio>

#include "host/Exit.h"
#include "host/Json.h"

namespace host {
namespace {

void printListing(GMA_Message& message, const std::string& title, PrivateSpool& spool) {
  // The one stream that both the listing and its summary reach.
  constexpr unsigned int LISTING_STREAM = 2;
  for (const RecordingStream::Entry& entry : spool.recorded().entries()) {
    std::fprintf(stderr, "%s\n", entry.text.c_str());
  }
  unsigned int status = 0;
  spool.log().attach(
      LISTING_STREAM,
      std::make_unique<TerminalStream>(TerminalStream::Output::plainOutput, LOG_Logging::NORMAL),
      status);
  message.dumpContents(title.c_str());
}

}  // namespace

int show(const PairOptions& options, bool json) {
  PrivateSpool spool(options);
  unsigned int status = 0;
  const std::unique_ptr<GMA_Message> message = spool.load(status);
  if (json) {
    const Json model = jsonMessage(*message, status, spool.recorded().entries());
    std::printf("%s\n", jsonString(model, 1).c_str());
  } else {
    printListing(*message, options.envelope, spool);
  }
  return status == 0 ? Exit::done : Exit::badMail;
}

}  // namespace host
