// The standard attribute names under which kinds of content describe themselves.
#pragma once

namespace dac {
inline constexpr char CONTENT_TITLE[] = "ContentTitle";
inline constexpr char CONTENT_PATH[] = "ContentPath";
inline constexpr char CONTAINER_NAME[] = "ContainerName";
inline constexpr char CONTAINER_CLASS[] = "ContainerClass";
inline constexpr char MAIL_SYSTEM_TYPE[] = "MailSystemType";
inline constexpr char ATTACHMENT_SIZE[] = "AttachmentSize";
inline constexpr char MESSAGE_SIZE[] = "MessageSize";
inline constexpr char NUM_ATTACHMENTS[] = "NumAttachments";
inline constexpr char BAD_DATA[] = "BadData";
inline constexpr char FILE_NAME[] = "FileName";
inline constexpr char ENCRYPTION[] = "Encryption";
inline constexpr char DATE[] = "Date";
inline constexpr char CONVERSION[] = "Conversion";
inline constexpr char MODIFIED_TS[] = "ModifiedTS";
inline constexpr char CREATE_TS[] = "CreateTS";
inline constexpr char ACCESS_TS[] = "AccessTS";
inline constexpr char NODE_ID[] = "NodeId";
inline constexpr char COMMENT[] = "Comment";
inline constexpr char HTTP_METHOD[] = "HttpMethod";
inline constexpr char URL[] = "Url";
inline constexpr char ATTACHED_SHORTCUT[] = "AttachedShortcut";
}  // namespace dac
