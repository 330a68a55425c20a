// Every status code that the system sets, in one place. A status is an unsigned 32-bit number,
// 0 means success. The blocks belong to the libraries; a number that two libraries use with
// different meanings has a name for each of them and is never compared across.
#pragma once

// General codes with built-in texts, used mainly as the reason of an assertion.
inline constexpr unsigned int GEN_NULL_POINTER = 1;
inline constexpr unsigned int GEN_NULL_HANDLE = 2;
inline constexpr unsigned int GEN_INDEX_RANGE = 3;
inline constexpr unsigned int GEN_VALUE_RANGE = 4;
inline constexpr unsigned int GEN_UNEXPECTED_VALUE = 8;
inline constexpr unsigned int GEN_UNIMPLEMENTED = 13;
inline constexpr unsigned int GEN_INCONSISTENT_VALUE = 14;
inline constexpr unsigned int GEN_WATCHED_DATA_CHANGED = 16;
inline constexpr unsigned int GEN_INTERNAL_ERROR = 17;
inline constexpr unsigned int GEN_BAD_SWITCH_VALUE = 18;

// Pattern decoder and file-name check (dv), as statuses.
inline constexpr unsigned int DV_BAD_RESULT = 101;
inline constexpr unsigned int DV_NO_MATCH = 121;   // also: not a valid path
inline constexpr unsigned int DV_PATTERN = 122;    // wildcards in name or extension
inline constexpr unsigned int DV_NOT_FOUND = 123;  // the file does not exist
inline constexpr unsigned int DV_DIRECTORY = 124;  // a directory
inline constexpr unsigned int DV_EMPTY = 125;      // empty or blank
inline constexpr unsigned int DV_NO_ROOM = 130;
inline constexpr unsigned int DV_BAD_PATTERN = 131;
inline constexpr unsigned int DV_NUMBER_RANGE = 132;

// Temporary file names (gen).
inline constexpr unsigned int GEN_TEMP_NAME = 140;

// File utilities (fl).
inline constexpr unsigned int FL_DRIVE_TYPE = 440;
inline constexpr unsigned int FL_NO_DRIVE = 441;
inline constexpr unsigned int FL_FREE_SPACE = 442;
inline constexpr unsigned int FL_MALFORMED = 451;
inline constexpr unsigned int FL_NOT_FOUND = 452;
inline constexpr unsigned int FL_EXISTS = 454;
inline constexpr unsigned int FL_PATTERN = 457;
inline constexpr unsigned int FL_DIRECTORY = 458;
inline constexpr unsigned int FL_DENIED = 460;
inline constexpr unsigned int FL_COPY_WRITE = 472;
inline constexpr unsigned int FL_COPY_READ = 473;
inline constexpr unsigned int FL_COPY_OPEN = 475;
inline constexpr unsigned int FL_RENAME_DENIED = 478;
inline constexpr unsigned int FL_RENAME_DEVICE = 479;
inline constexpr unsigned int FL_RENAME = 480;
inline constexpr unsigned int FL_DELETE = 481;
inline constexpr unsigned int FL_DIRECTORY_EXISTS = 482;
inline constexpr unsigned int FL_MAKE_DIRECTORY = 483;
inline constexpr unsigned int FL_NO_PATTERN = 484;
inline constexpr unsigned int FL_NO_MORE = 485;
inline constexpr unsigned int FL_SHORT_BUFFER = 486;
inline constexpr unsigned int FL_CLOSE = 498;
inline constexpr unsigned int FL_NOT_READY = 499;

// Copy of a data access object to a file (dac); numbers of the file block, meanings of their own.
inline constexpr unsigned int DACTOFIL_DISK_FULL = 444;
inline constexpr unsigned int DACTOFIL_COMMIT = 452;
inline constexpr unsigned int DACTOFIL_WRITE = 472;
inline constexpr unsigned int DACTOFIL_OPEN = 490;
inline constexpr unsigned int DACTOFIL_CLOSE = 498;

// Profiles (pfa).
inline constexpr unsigned int PFA_CUT = 1820;
inline constexpr unsigned int PFA_CREATE = 1821;
inline constexpr unsigned int PFA_OPEN = 1822;
inline constexpr unsigned int PFA_NO_MORE_ANYWHERE = 1823;
inline constexpr unsigned int PFA_NO_MORE = 1824;
inline constexpr unsigned int PFA_EXISTS = 1825;
inline constexpr unsigned int PFA_READ = 1826;
inline constexpr unsigned int PFA_HEADER = 1827;
inline constexpr unsigned int PFA_NO_ENTRY = 1828;
inline constexpr unsigned int PFA_NO_SECTION = 1829;
inline constexpr unsigned int PFA_SECTION_NOT_FOUND = 1830;
inline constexpr unsigned int PFA_ENTRY_NOT_FOUND = 1831;
inline constexpr unsigned int PFA_NO_WORKING_NAME = 1832;
inline constexpr unsigned int PFA_NUMBER = 1833;
inline constexpr unsigned int PFA_INDEXED = 1834;
inline constexpr unsigned int PFA_NOT_WRITABLE = 1835;
inline constexpr unsigned int PFA_NEGATIVE = 1837;
inline constexpr unsigned int PFA_BOOLEAN = 1838;
inline constexpr unsigned int PFA_FIELD = 1841;
inline constexpr unsigned int PFA_COMMENT = 1842;
inline constexpr unsigned int PFA_NO_FILE_NAME = 1843;
inline constexpr unsigned int PFA_POSITION = 1844;

// Registry (gen).
inline constexpr unsigned int REG_CREATE = 2110;
inline constexpr unsigned int REG_OPEN = 2111;
inline constexpr unsigned int REG_DELETE_KEY = 2112;
inline constexpr unsigned int REG_READ = 2113;
inline constexpr unsigned int REG_ENUMERATE = 2114;
inline constexpr unsigned int REG_WRITE = 2115;
inline constexpr unsigned int REG_NOT_STRING = 2116;
inline constexpr unsigned int REG_NOT_NUMBER = 2117;
inline constexpr unsigned int REG_DELETE_VALUE = 2118;

// Data access and streams (dac).
inline constexpr unsigned int DAC_NO_CHILDREN = 10010;
inline constexpr unsigned int DAC_NO_MEMORY = 10011;
inline constexpr unsigned int DAC_EXISTS = 10013;
inline constexpr unsigned int DAC_LINE_TOO_LONG = 10014;  // the buffer holds the line's start
inline constexpr unsigned int DAC_CHILD_INDEX = 10015;
inline constexpr unsigned int DAC_END = 10016;  // position at or beyond the end
inline constexpr unsigned int DAC_NEGATIVE_POSITION = 10017;
inline constexpr unsigned int DAC_SEEK = 10020;
inline constexpr unsigned int DAC_READ = 10021;
inline constexpr unsigned int DAC_WRITE = 10022;
inline constexpr unsigned int DAC_SET_SIZE = 10023;
inline constexpr unsigned int DAC_PATH_TOO_LONG = 10026;
inline constexpr unsigned int DAC_NO_FILE = 10027;
inline constexpr unsigned int DAC_FLUSH = 10034;
inline constexpr unsigned int DAC_READ_ONLY = 10038;
inline constexpr unsigned int DAC_NO_ATTRIBUTE = 10039;
inline constexpr unsigned int DAC_ATTRIBUTE_TYPE = 10040;
inline constexpr unsigned int DAC_OPEN = 4294967295U;

// Generic mail model (gma).
inline constexpr unsigned int GMA_NO_BODY_OBJECT = 10110;
inline constexpr unsigned int GMA_BAD_ADDRESS = 10132;
inline constexpr unsigned int GMA_BAD_KEYWORD = 10137;

// Logging (log).
inline constexpr unsigned int LOG_NO_STREAM_MEMORY = 10601;
inline constexpr unsigned int LOG_NOTHING_SELECTED = 10610;
inline constexpr unsigned int LOG_NO_SUCH_STREAM = 10612;
inline constexpr unsigned int LOG_CATEGORY = 10613;
inline constexpr unsigned int LOG_STREAM_NUMBER = 10615;
inline constexpr unsigned int LOG_STREAM_TAKEN = 10616;
inline constexpr unsigned int LOG_NAME_TYPE = 10617;
inline constexpr unsigned int LOG_NO_CONVERSION = 10618;
inline constexpr unsigned int LOG_SYSTEM_FILE_KEPT = 10622;
inline constexpr unsigned int LOG_STREAM_TYPE = 10623;
inline constexpr unsigned int LOG_NO_ROOT_NAME = 10625;
inline constexpr unsigned int LOG_NAME_TOO_LONG = 10626;
inline constexpr unsigned int LOG_MAX_LEVEL = 10628;
inline constexpr unsigned int LOG_NO_DIRECTORY = 10629;
inline constexpr unsigned int LOG_NOT_SUPPORTED = 10630;

// The connector (krx).
inline constexpr unsigned int KRX_PASSWORD_TWICE = 11911;
inline constexpr unsigned int KRX_PASSWORD_LENGTH = 11912;
inline constexpr unsigned int KRX_USER_TWICE = 11913;
inline constexpr unsigned int KRX_USER_LENGTH = 11914;
inline constexpr unsigned int KRX_ENTRY_TWICE = 11915;
inline constexpr unsigned int KRX_ENTRY_LENGTH = 11916;
inline constexpr unsigned int KRX_SCHEDULE = 11917;
inline constexpr unsigned int KRX_IDLE_TIME = 11918;
inline constexpr unsigned int KRX_NO_SUCH_ENTRY = 11919;
inline constexpr unsigned int KRX_PHONEBOOK = 11920;
inline constexpr unsigned int KRX_NO_ENTRY = 11922;
inline constexpr unsigned int KRX_ENTRY_WRITE = 11923;
inline constexpr unsigned int KRX_NO_DIAL_LIBRARY = 11924;
inline constexpr unsigned int KRX_RELAYED_ADDRESS = 11925;
inline constexpr unsigned int KRX_RETRY_DELAY = 11926;
inline constexpr unsigned int KRX_RETRY_COUNT = 11927;
inline constexpr unsigned int KRX_SOURCE_UNREACHABLE = 11957;
inline constexpr unsigned int KRX_DEST_UNREACHABLE = 11958;
inline constexpr unsigned int KRX_SOURCE_INVALID = 11959;
inline constexpr unsigned int KRX_DEST_INVALID = 11960;
inline constexpr unsigned int KRX_SOURCE_OTHER = 11961;
inline constexpr unsigned int KRX_DEST_OTHER = 11962;
inline constexpr unsigned int KRX_NO_SOURCE = 11963;
inline constexpr unsigned int KRX_NO_DEST = 11964;
inline constexpr unsigned int KRX_SOURCE_TWICE = 11965;
inline constexpr unsigned int KRX_DEST_TWICE = 11966;
inline constexpr unsigned int KRX_UNKNOWN_DIRECTIVE = 11967;
inline constexpr unsigned int KRX_ENVELOPE_OPEN = 11968;
inline constexpr unsigned int KRX_MESSAGE_OPEN = 11969;
inline constexpr unsigned int KRX_NOT_CREATED = 11970;
inline constexpr unsigned int KRX_MESSAGE_CREATE = 11971;
inline constexpr unsigned int KRX_ENVELOPE_CREATE = 11972;
inline constexpr unsigned int KRX_STILL_LOCKED = 11973;
inline constexpr unsigned int KRX_NO_DOMAIN = 11974;
inline constexpr unsigned int KRX_DEST_LOCKED = 11976;
inline constexpr unsigned int KRX_ENVELOPE_FORM = 11981;
inline constexpr unsigned int KRX_NO_BOUNDARY = 11982;
inline constexpr unsigned int KRX_DOMAIN_TWICE = 11983;
inline constexpr unsigned int KRX_FREE_SPACE = 11989;
inline constexpr unsigned int KRX_NO_PARTS = 11990;
inline constexpr unsigned int KRX_CONTAINER_CLASS = 11991;

// RFC 822 and MIME (rfc).
inline constexpr unsigned int RFC_BAD_CONTENT_TYPE = 12001;
inline constexpr unsigned int RFC_OPEN_COMMENT = 12003;
inline constexpr unsigned int RFC_OPEN_QUOTE = 12005;
inline constexpr unsigned int RFC_OPEN_LITERAL = 12007;
inline constexpr unsigned int RFC_BAD_ENCODING_LIST = 12009;
inline constexpr unsigned int RFC_BAD_WORD = 12010;
inline constexpr unsigned int RFC_BAD_DISPOSITION = 12026;
