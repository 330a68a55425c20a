// Copies a file under a new name.
#include "host/Copy.h"

#include <memory>

#include "plat/PlatFile.h"

namespace host {
namespace {

constexpr std::size_t BLOCK = 65536;

int copyContent(plat::File& source, plat::File& target) {
  const auto buffer = std::make_unique<char[]>(BLOCK);
  std::size_t got = BLOCK;
  int error = 0;
  for (std::int64_t position = 0; error == 0 && got == BLOCK; position += BLOCK) {
    error = source.readAt(position, buffer.get(), BLOCK, got);
    if (error == 0) {
      error = target.writeAt(position, buffer.get(), got);
    }
  }
  return error;
}

}  // namespace

int copyExclusively(const std::string& from, const std::string& to, const CopyOptions& options) {
  plat::OpenMode reading;
  reading.read = true;
  reading.noFollow = !options.followLinks;
  plat::OpenMode writing;
  writing.write = true;
  writing.create = true;
  writing.exclusive = true;
  writing.noFollow = true;
  writing.permissions = options.permissions;
  plat::File source;
  plat::File target;
  int error = source.open(from, reading);
  if (error == 0) {
    error = target.open(to, writing);
  }
  if (error != 0) {
    return error;
  }
  error = copyContent(source, target);
  if (error == 0 && options.commit) {
    error = target.commit();
  }
  const int closeError = target.close();
  error = error != 0 ? error : closeError;
  if (error != 0) {
    plat::remove(to);
  }
  return error;
}

}  // namespace host
