// An outbound message of one's own.
#pragma once

#include <string>
#include <vector>

#include "host/Config.h"
#include "host/PostOffices.h"

namespace host {

struct SendOptions {
  std::string postOffice;
  std::string from;
  std::vector<std::string> to;
  std::string subject;
  std::string bodyFile;  // "-": standard input; empty: no text
  std::vector<std::string> attachments;
};

// Delivers the message into the post office's DestDir; the exit status.
int send(PostOffice& office, const SendOptions& options);

}  // namespace host
