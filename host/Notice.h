// Notices: texts made from a template, put before or after the body of a message.
#pragma once

#include <string>

#include "gma/GMAMSG.h"
#include "host/PrivateSpool.h"

namespace host {

struct NoticeFiles {
  std::string prepend;  // paths of templates; empty: none
  std::string append;
  bool isEmpty() const { return prepend.empty() && append.empty(); }
};

// Puts the notices into the message, which has its standard attributes. A coded body, or none, is
// never mixed with a notice: the notice becomes the body and the old body the first item. The
// status of the first failure; the message is then not to be delivered.
void addNotices(GMA_Message& message, const NoticeFiles& files, unsigned int& status);

// The command: loads the pair, adds the notices, and stores it into a directory. The exit status.
int notify(const PairOptions& options, const NoticeFiles& files);

}  // namespace host
