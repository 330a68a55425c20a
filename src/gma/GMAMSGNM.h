// The names of the attributes that a message gets of its own: setStandardAttributes sets all of
// them but UniqueId (with the names of dac/DACATTRN.h for the numbers), getUniqueId reads that.
#pragma once

namespace gma {
inline constexpr char ATTRIBUTE_TO[] = "To";
inline constexpr char ATTRIBUTE_CC[] = "Cc";
inline constexpr char ATTRIBUTE_BCC[] = "Bcc";
inline constexpr char ATTRIBUTE_FROM[] = "From";
inline constexpr char ATTRIBUTE_RETURN_PATH[] = "Return-Path";
inline constexpr char ATTRIBUTE_RECIPIENT[] = "Recipient";
inline constexpr char ATTRIBUTE_SUBJECT[] = "Subject";
inline constexpr char ATTRIBUTE_SENT_DATE[] = "SentDate";
inline constexpr char ATTRIBUTE_PRIORITY[] = "Priority";
inline constexpr char ATTRIBUTE_UNIQUE_ID[] = "UniqueId";
inline constexpr char ATTRIBUTE_SOURCE_POST_OFFICE[] = "SourcePostOffice";
}  // namespace gma
