// The registry's database: where it is, its tables, its transactions.
#include "plat/PlatStore.h"

#include <cerrno>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include "plat/PlatFile.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

constexpr char SYSTEM_DIRECTORY[] = "/var/lib/krx";
constexpr char STORE_NAME[] = "/registry.db";
constexpr int BUSY_MILLISECONDS = 10'000;
constexpr std::int64_t VERSION = 1;

// Root keys are the rows 0 to 3 that nobody made: their subkeys have the root's number minus 4 as
// parent. AUTOINCREMENT keeps the order of insertion after deletions.
constexpr char TABLES[] =
    "CREATE TABLE keys (id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL,"
    " name TEXT NOT NULL COLLATE NOCASE, UNIQUE (parent, name));"
    "CREATE TABLE entries (id INTEGER PRIMARY KEY AUTOINCREMENT, key INTEGER NOT NULL,"
    " name TEXT NOT NULL COLLATE NOCASE, type INTEGER NOT NULL, data BLOB NOT NULL,"
    " UNIQUE (key, name));"
    // The temporary directory of the default user's profile.
    "INSERT INTO keys VALUES (1, -1, '.DEFAULT'), (2, 1, 'Environment');"
    "INSERT INTO entries VALUES (1, 2, 'TMP', 1, CAST('/tmp' AS BLOB));"
    "PRAGMA user_version = 1;";

// Makes every missing directory above the file, for our user only.
void makeParents(const std::string& file) {
  for (std::size_t slash = file.find('/', 1); slash != std::string::npos;
       slash = file.find('/', slash + 1)) {
    ::mkdir(file.substr(0, slash).c_str(), 0700);
  }
}

// Empty when there is no place for a store.
std::string storePath() {
  if (const char* chosen = setting("KRX_REGISTRY"); chosen != nullptr) {
    return toNative(chosen);
  }
  if (::faccessat(AT_FDCWD, SYSTEM_DIRECTORY, W_OK | X_OK, AT_EACCESS) == 0) {
    return std::string(SYSTEM_DIRECTORY) + STORE_NAME;
  }
  std::string base;
  if (const char* state = setting("XDG_STATE_HOME"); state != nullptr) {
    base = state;
  } else if (const char* home = setting("HOME"); home != nullptr) {
    base = std::string(home) + "/.local/state";
  } else {
    return std::string();
  }
  base += "/krx";
  base += STORE_NAME;
  makeParents(base);
  return base;
}

[[noreturn]] void failAt(std::string_view file) {
  fail("registry", file, EIO);
  throw StoreError();
}

// A call of the open database has failed.
[[noreturn]] void failIn(sqlite3* database) {
  const char* const file = sqlite3_db_filename(database, "main");
  failAt(file != nullptr ? file : "");
}

void execute(sqlite3* database, const char* sql) {
  if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK) {
    failIn(database);
  }
}

std::int64_t versionOf(sqlite3* database) {
  Statement statement(database, "PRAGMA user_version");
  return statement.step() ? statement.number(0) : -1;
}

// Two processes may meet a new store at once: the second finds the tables of the first.
void prepare(sqlite3* database) {
  sqlite3_busy_timeout(database, BUSY_MILLISECONDS);
  if (commitDisabled()) {
    execute(database, "PRAGMA synchronous = OFF");
  }
  if (versionOf(database) == VERSION) {
    return;
  }
  execute(database, "BEGIN IMMEDIATE");
  const std::int64_t version = versionOf(database);
  if (version != 0 && version != VERSION) {
    failIn(database);  // of a later release, whose tables we do not know
  }
  if (version == 0) {
    execute(database, TABLES);
  }
  execute(database, "COMMIT");
}

}  // namespace

Statement::Statement(sqlite3* database, const char* sql) {
  if (sqlite3_prepare_v2(database, sql, -1, &m_statement, nullptr) != SQLITE_OK) {
    failIn(database);
  }
}

Statement::~Statement() {
  sqlite3_finalize(m_statement);
}

Statement& Statement::bind(std::int64_t number) {
  if (sqlite3_bind_int64(m_statement, ++m_bound, number) != SQLITE_OK) {
    failIn(sqlite3_db_handle(m_statement));
  }
  return *this;
}

Statement& Statement::bind(std::string_view text) {
  if (sqlite3_bind_text64(m_statement, ++m_bound, text.empty() ? "" : text.data(), text.size(),
                          SQLITE_STATIC, SQLITE_UTF8) != SQLITE_OK) {
    failIn(sqlite3_db_handle(m_statement));
  }
  return *this;
}

Statement& Statement::bindBytes(std::string_view data) {
  if (sqlite3_bind_blob64(m_statement, ++m_bound, data.empty() ? "" : data.data(), data.size(),
                          SQLITE_STATIC) != SQLITE_OK) {
    failIn(sqlite3_db_handle(m_statement));
  }
  return *this;
}

bool Statement::step() {
  const int result = sqlite3_step(m_statement);
  if (result != SQLITE_ROW && result != SQLITE_DONE) {
    failIn(sqlite3_db_handle(m_statement));
  }
  return result == SQLITE_ROW;
}

std::int64_t Statement::number(int column) const {
  return sqlite3_column_int64(m_statement, column);
}

std::string Statement::bytes(int column) const {
  const void* data = sqlite3_column_blob(m_statement, column);
  const int size = sqlite3_column_bytes(m_statement, column);
  return data == nullptr
             ? std::string()
             : std::string(static_cast<const char*>(data), static_cast<std::size_t>(size));
}

Transaction::Transaction(Access access) {
  const std::string path = storePath();
  const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX;
  try {
    if (path.empty() || sqlite3_open_v2(path.c_str(), &m_database, flags, nullptr) != SQLITE_OK) {
      failAt(path);
    }
    prepare(m_database);
    execute(m_database, access == Access::write ? "BEGIN IMMEDIATE" : "BEGIN");
  } catch (...) {
    sqlite3_close(m_database);
    throw;
  }
}

Transaction::~Transaction() {
  sqlite3_close(m_database);
}  // rolls back what was not committed

void Transaction::commit() {
  execute(m_database, "COMMIT");
}

}  // namespace plat
