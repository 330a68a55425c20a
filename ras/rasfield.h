// The fields of an entry's properties as the phonebook names and writes them.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "krx/krxrasif.h"

namespace ras {

struct Field {
  enum Kind { NUMBER, HEX, TEXT, ADDRESS };
  const char* name;
  Kind kind;
  std::size_t offset;
  std::size_t size;
};

// In the order of the record.
std::span<const Field> fields() noexcept;
// Null when no field has this name; the case of letters counts.
const Field* findField(std::string_view name) noexcept;

// False, and the record unchanged, when `text` is no such value or does not fit.
bool parseField(const Field& field, const std::string& text, RasEntry& entry);
std::string printField(const Field& field, const RasEntry& entry);

}  // namespace ras
