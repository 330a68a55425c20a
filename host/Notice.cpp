// Puts notices into messages.
#include "host/Notice.h"

#include <cstdio>
#include <memory>

#include "dac/DACFILDA.h"
#include "gen/GENCATCH.h"
#include "host/Exit.h"
#include "rfc/rfcread.h"
#include "rfc/rfcvalue.h"

namespace host {
namespace {

constexpr char ENCODING[] = "Content-Transfer-Encoding";

// A transfer encoding under which the content stands as it is, RFC 2045 section 6.1. A value that
// is no single word, or that nobody knows, may mean anything.
bool isIdentity(const SCL_StringRef& value) {
  SCL_String word;
  if (rfc_parse_word(value, word) != 0) {
    return false;
  }
  return SCL_equalNoCase(word, "7bit") || SCL_equalNoCase(word, "8bit") ||
         SCL_equalNoCase(word, "binary");
}

// Whether text can be put before and behind the body as it stands. Of a part of a multipart the
// encoding is told by its own header, of a single part by the message's.
bool isPlain(GMA_Message& message) {
  DAC_BaseDataAccess* body = message.getBody();
  if (body == nullptr) {
    return false;
  }
  unsigned int status = 0;
  SCL_String own;
  body->getStringAttribute(ENCODING, own, status);
  if (status == 0 && !isIdentity(own)) {
    return false;
  }
  const GMA_MhdrTable& headers = message.headers();
  for (std::uint16_t i = 0; i < headers.count(); ++i) {
    if (headers.get(i)->type() == gma::CONTENT_TRANSFER_ENCODING &&
        !isIdentity(rfc_unfold(headers.get(i)->value()))) {
      return false;
    }
  }
  return true;
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

void addNotice(GMA_Message& message, const std::string& path, bool before, bool& plain,
               unsigned int& status) {
  if (path.empty() || status != 0) {
    return;
  }
  const auto text = openTemplate(path, status);
  if (status != 0) {
    return;
  }
  if (!plain) {
    addAsBody(message, *text, status);
    plain = true;  // the body is the notice now
  } else if (before) {
    message.prependText(text.get(), status);
  } else {
    message.appendText(text.get(), status);
  }
}

}  // namespace

void addNotices(GMA_Message& message, const NoticeFiles& files, unsigned int& status) {
  bool plain = isPlain(message);
  addNotice(message, files.prepend, true, plain, status);
  addNotice(message, files.append, false, plain, status);
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
