// For the sources of this folder only: the SQLite database behind the registry, opened for one
// transaction. A failed call of the database is a StoreError, which the registry turns into EIO; by
// then the database's file is recorded as the path of the failure.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace plat {

struct StoreError {};

// A prepared statement: bind in order, then step through its rows. Dies before its transaction.
class Statement {
 public:
  Statement(sqlite3* database, const char* sql);
  Statement(const Statement&) = delete;
  Statement& operator=(const Statement&) = delete;
  ~Statement();

  Statement& bind(std::int64_t number);
  Statement& bind(std::string_view text);       // text that must outlive the steps
  Statement& bindBytes(std::string_view data);  // likewise
  bool step();                                  // true: a row is there
  void run() { step(); }
  std::int64_t number(int column) const;
  std::string bytes(int column) const;

 private:
  sqlite3_stmt* m_statement = nullptr;
  int m_bound = 0;
};

// Opens the store (made and seeded when it is new) and begins a transaction, which is rolled back
// unless it was committed. A store is opened for each operation: operations are rare, and a file
// that was replaced or renamed meanwhile is never written to by mistake.
class Transaction {
 public:
  enum class Access { read, write };

  explicit Transaction(Access access);
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction();

  sqlite3* database() const noexcept { return m_database; }
  void commit();

 private:
  sqlite3* m_database = nullptr;
};

}  // namespace plat
