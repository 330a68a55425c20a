// The registry's operations on keys and values, and environment variables.
#include "plat/PlatRegistry.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <optional>

#include "plat/PlatStore.h"
#include "plat/PlatSystem.h"

namespace plat {

namespace {

using Access = Transaction::Access;

constexpr int ROOTS = 4;

// Runs `operation(transaction)`, which gives 0 or an errno value, in a transaction that is kept
// when the result is 0.
template <class Operation>
int inTransaction(int root, std::string_view key, Access access, Operation operation) {
  if (root < 0 || root >= ROOTS) {
    return fail("registry", key, EINVAL);
  }
  try {
    Transaction transaction(access);
    if (const int error = operation(transaction.database()); error != 0) {
      return fail("registry", key, error);
    }
    transaction.commit();
    return 0;
  } catch (const StoreError&) {
    return EIO;
  }
}

// The next component of a key path, taken off `path`; empty at the end.
std::string_view takeComponent(std::string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of('\\'), path.size()));
  const std::string_view component = path.substr(0, path.find('\\'));
  path.remove_prefix(component.size());
  return component;
}

std::int64_t idOfRoot(int root) {
  return root - ROOTS;
}

std::optional<std::int64_t> findSubkey(sqlite3* database, std::int64_t parent,
                                       std::string_view name) {
  Statement statement(database, "SELECT id FROM keys WHERE parent = ? AND name = ?");
  statement.bind(parent).bind(name);
  return statement.step() ? std::optional(statement.number(0)) : std::nullopt;
}

std::optional<std::int64_t> findKey(sqlite3* database, int root, std::string_view path) {
  std::optional<std::int64_t> id = idOfRoot(root);
  while (id) {
    const std::string_view name = takeComponent(path);
    if (name.empty()) {
      break;
    }
    id = findSubkey(database, *id, name);
  }
  return id;
}

std::int64_t makeSubkey(sqlite3* database, std::int64_t parent, std::string_view name) {
  Statement statement(database, "INSERT INTO keys (parent, name) VALUES (?, ?) RETURNING id");
  statement.bind(parent).bind(name);
  statement.step();
  const std::int64_t id = statement.number(0);
  statement.run();  // to its end, or the insertion is not finished
  return id;
}

std::int64_t makeKey(sqlite3* database, int root, std::string_view path) {
  std::int64_t id = idOfRoot(root);
  for (std::string_view name = takeComponent(path); !name.empty(); name = takeComponent(path)) {
    const auto found = findSubkey(database, id, name);
    id = found ? *found : makeSubkey(database, id, name);
  }
  return id;
}

// The row of a value: name, type, data.
RegistryValue valueOf(const Statement& row) {
  return {row.bytes(0), static_cast<ValueType>(row.number(1)), row.bytes(2)};
}

void deleteTree(sqlite3* database, std::int64_t id) {
  const std::string tree =
      "WITH RECURSIVE tree (id) AS (SELECT ? UNION ALL"
      " SELECT keys.id FROM keys, tree WHERE keys.parent = tree.id) ";
  for (const char* deletion : {"DELETE FROM entries WHERE key IN (SELECT id FROM tree)",
                               "DELETE FROM keys WHERE id IN (SELECT id FROM tree)"}) {
    Statement(database, (tree + deletion).c_str()).bind(id).run();
  }
}

}  // namespace

int registryCreateKey(int root, std::string_view key) {
  return inTransaction(root, key, Access::write, [&](sqlite3* database) {
    makeKey(database, root, key);
    return 0;
  });
}

int registryKeyExists(int root, std::string_view key, bool& exists) {
  return inTransaction(root, key, Access::read, [&](sqlite3* database) {
    exists = findKey(database, root, key).has_value();
    return 0;
  });
}

int registryReadValue(int root, std::string_view key, std::string_view name, RegistryValue& value) {
  return inTransaction(root, key, Access::read, [&](sqlite3* database) {
    const auto id = findKey(database, root, key);
    if (!id) {
      return ENOENT;
    }
    Statement row(database, "SELECT name, type, data FROM entries WHERE key = ? AND name = ?");
    if (!row.bind(*id).bind(name).step()) {
      return ENOENT;
    }
    value = valueOf(row);
    return 0;
  });
}

int registryWriteValue(int root, std::string_view key, const RegistryValue& value) {
  return inTransaction(root, key, Access::write, [&](sqlite3* database) {
    // A value that is there keeps its place and the name that it was made with.
    Statement(database,
              "INSERT INTO entries (key, name, type, data) VALUES (?, ?, ?, ?)"
              " ON CONFLICT (key, name) DO UPDATE SET type = excluded.type, data = excluded.data")
        .bind(makeKey(database, root, key))
        .bind(value.name)
        .bind(static_cast<std::int64_t>(value.type))
        .bindBytes(value.data)
        .run();
    return 0;
  });
}

int registryDeleteValue(int root, std::string_view key, std::string_view name) {
  return inTransaction(root, key, Access::write, [&](sqlite3* database) {
    const auto id = findKey(database, root, key);
    if (!id) {
      return ENOENT;
    }
    Statement deletion(database, "DELETE FROM entries WHERE key = ? AND name = ? RETURNING id");
    const bool deleted = deletion.bind(*id).bind(name).step();
    return deleted && !deletion.step() ? 0 : ENOENT;
  });
}

int registrySubkeys(int root, std::string_view key, std::vector<std::string>& names) {
  names.clear();
  return inTransaction(root, key, Access::read, [&](sqlite3* database) {
    const auto id = findKey(database, root, key);
    if (!id) {
      return ENOENT;
    }
    Statement row(database, "SELECT name FROM keys WHERE parent = ? ORDER BY id");
    for (row.bind(*id); row.step();) {
      names.push_back(row.bytes(0));
    }
    return 0;
  });
}

int registryValues(int root, std::string_view key, std::vector<RegistryValue>& values) {
  values.clear();
  return inTransaction(root, key, Access::read, [&](sqlite3* database) {
    const auto id = findKey(database, root, key);
    if (!id) {
      return ENOENT;
    }
    Statement row(database, "SELECT name, type, data FROM entries WHERE key = ? ORDER BY id");
    for (row.bind(*id); row.step();) {
      values.push_back(valueOf(row));
    }
    return 0;
  });
}

int registryDeleteTree(int root, std::string_view key) {
  return inTransaction(root, key, Access::write, [&](sqlite3* database) {
    const auto id = findKey(database, root, key);
    if (!id) {
      return ENOENT;
    }
    if (*id < 0) {
      return EINVAL;  // a root key stays
    }
    deleteTree(database, *id);
    return 0;
  });
}

std::string expandEnvironment(std::string_view text, std::size_t limit) {
  std::string result;
  while (!text.empty() && result.size() < limit) {
    const std::size_t end = text.front() == '%' ? text.find('%', 1) : std::string_view::npos;
    if (end == std::string_view::npos || end == 1) {  // "%%" and a lone "%" stand for themselves
      const std::size_t plain = end == 1 ? 2 : std::min(text.find('%', 1), text.size());
      result += text.substr(0, plain);
      text.remove_prefix(plain);
      continue;
    }
    std::string value;
    environment(std::string(text.substr(1, end - 1)).c_str(), value);
    result += value;
    text.remove_prefix(end + 1);
  }
  result.resize(std::min(result.size(), limit));
  return result;
}

bool environment(const char* name, std::string& value) {
  const char* found = std::getenv(name);
  if (found == nullptr) {
    return false;
  }
  value = found;
  return true;
}

}  // namespace plat
