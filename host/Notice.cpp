// Puts notices into messages.
#include "host/Notice.h"

#include <cstdio>
#include <memory>

#include "dac/DACFILDA.h"
#include "gen/GENCATCH.h"
#include "host/Exit.h"
#include "rfc/RFCB64Da.h"
#include "rfc/RFCQprDa.h"

namespace host {
namespace {

// Whether text can be put before and behind this content as it stands.
bool isPlain(DAC_BaseDataAccess* body) {
  return body != nullptr && dynamic_cast<RFCB64Da*>(body) == nullptr &&
         dynamic_cast<RFCQprDa*>(body) == nullptr;
}

std::unique_ptr<DAC_FileDataAccess> openTemplate(const std::string& path, unsigned int& status) {
  unsigned int opened = status;
  auto text =
      std::make_unique<DAC_FileDataAccess>(path.c_str(), DAC_FileDataAccess::READ_ONLY, opened);
  status = opened;
  return text;
}

// The text alone, as a body of its own before what was there.
void addAsBody(GMA_Message& message, DAC_BaseDataAccess& text, unsigned int& status) {
  DAC_BaseDataAccess* old = message.getBody();
  message.setBodyPointer(nullptr);
  message.prependText(&text, status);
  DAC_BaseDataAccess* notice = message.getBody();
  message.setBodyPointer(old);
  if (notice != nullptr) {
    message.setBody(notice);
  }
}

void addNotice(GMA_Message& message, const std::string& path, bool before, unsigned int& status) {
  if (path.empty() || status != 0) {
    return;
  }
  const auto text = openTemplate(path, status);
  if (status != 0) {
    return;
  }
  if (!isPlain(message.getBody())) {
    addAsBody(message, *text, status);
  } else if (before) {
    message.prependText(text.get(), status);
  } else {
    message.appendText(text.get(), status);
  }
}

}  // namespace

void addNotices(GMA_Message& message, const NoticeFiles& files, unsigned int& status) {
  addNotice(message, files.prepend, true, status);
  addNotice(message, files.append, false, status);
}

int notify(const PairOptions& options, const NoticeFiles& files) {
  if (files.isEmpty()) {
    throw Error(usage, "A notice is needed: --prepend or --append.");
  }
  PrivateSpool spool(options);
  unsigned int status = 0;
  const std::unique_ptr<GMA_Message> message = spool.load(status);
  if (status != 0) {
    throw Error(badMail, "The pair cannot be loaded, status " + std::to_string(status) + ".");
  }
  const auto failure = GENCatch([&] {
    message->setStandardAttributes();
    addNotices(*message, files, status);
    message->storeMessage(status);
  });
  if (failure || status != 0) {
    throw Error(inputOutput, "The notice cannot be added, " +
                                 (failure ? *failure : "status " + std::to_string(status)) + ".");
  }
  return Exit::done;
}

}  // namespace host
