// GMA_FilePair: what a message that was fetched as a pair of files tells of their names; a host
// that keeps pairs itself asks with dynamic_cast.
#pragma once

#include "scl/SCLSTRNG.h"

class GMA_FilePair {
 public:
  virtual ~GMA_FilePair();
  // Names without directory, as they stand in the source directory; empty for a new message. They
  // stay when the message is stored under another name.
  virtual const SCL_String& fetchedEnvelope() const noexcept = 0;
  virtual const SCL_String& fetchedMessage() const noexcept = 0;
};
