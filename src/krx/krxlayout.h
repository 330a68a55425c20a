// How an outbound message is laid out, decided before its header block is written.
#pragma once

#include "krx/krxmsg.h"

struct KRX_Message::Layout {
  enum class Shape { empty, single, multipart };
  Shape shape = Shape::empty;
  bool generated = false;       // the boundary was made here, not by the message's own header
  bool addMimeVersion = false;  // a MIME-Version line of our own goes before the Content-Type
  SCL_String boundary;          // multipart only
  // The message's own Content-Type and Content-Transfer-Encoding describe one part of what is now a
  // generated multipart: they are left out of the header block and written on that part.
  bool moveOwnFields = false;
  SCL_String ownContentType;
  SCL_String ownEncoding;

  bool leavesOut(std::uint32_t headerType) const noexcept {
    return moveOwnFields &&
           (headerType == gma::CONTENT_TYPE || headerType == gma::CONTENT_TRANSFER_ENCODING);
  }
};
