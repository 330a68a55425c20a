// Copies pairs into the receiver directory. The message's own save never replaces an earlier copy
// of the same name; where one stands in the way, the pair is kept under a name with a number.
#include "host/Receiver.h"

#include <cerrno>
#include <memory>

#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gma/GMAMSG.h"
#include "gma/GMAPAIR.h"
#include "host/Copy.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"

namespace host {
namespace {

constexpr int MAX_COPIES = 10000;
constexpr std::size_t BLOCK = 65536;

int openSpoolFile(plat::File& file, const std::string& path) {
  plat::OpenMode mode;
  mode.read = true;
  mode.noFollow = true;
  return file.open(path, mode);
}

// 1 the same bytes, 0 not, -1 one of them cannot be read.
int sameContent(const std::string& a, const std::string& b) {
  plat::File files[2];
  if (openSpoolFile(files[0], a) != 0 || openSpoolFile(files[1], b) != 0) {
    return -1;
  }
  const auto buffer = std::make_unique<char[]>(2 * BLOCK);
  for (std::int64_t position = 0;; position += BLOCK) {
    std::size_t got[2];
    for (int i = 0; i < 2; ++i) {
      if (files[i].readAt(position, buffer.get() + static_cast<std::size_t>(i) * BLOCK, BLOCK,
                          got[i]) != 0) {
        return -1;
      }
    }
    const std::string_view first(buffer.get(), got[0]);
    const std::string_view second(buffer.get() + BLOCK, got[1]);
    if (first != second) {
      return 0;
    }
    if (got[0] < BLOCK) {
      return 1;
    }
  }
}

struct PairPaths {
  std::string directory;
  std::string envelope;
  std::string message;
};

std::string numbered(const std::string& name, int number) {
  const std::size_t point = name.rfind('.');
  return name.substr(0, point) + "-" + std::to_string(number) + name.substr(point);
}

// Message file first, so that the copy is never an envelope without its message.
int copyPair(const PairPaths& pair, int number) {
  const std::string receiver = pair.directory + RECEIVER_DIRECTORY;
  const std::string message = receiver + numbered(pair.message, number);
  const CopyOptions committed{.commit = true};
  int error = copyExclusively(pair.directory + pair.message, message, committed);
  if (error != 0) {
    return error;
  }
  error = copyExclusively(pair.directory + pair.envelope,
                          receiver + numbered(pair.envelope, number), committed);
  if (error == 0) {
    return plat::commitDirectory(receiver);
  }
  plat::remove(message);
  return error;
}

bool isCopy(const PairPaths& pair, const std::string& envelope, const std::string& message) {
  const std::string receiver = pair.directory + RECEIVER_DIRECTORY;
  return sameContent(pair.directory + pair.envelope, receiver + envelope) == 1 &&
         sameContent(pair.directory + pair.message, receiver + message) == 1;
}

bool keepBesideEarlier(const PairPaths& pair, std::string& envelope, std::string& why) {
  if (isCopy(pair, pair.envelope, pair.message)) {
    envelope = pair.envelope;
    return true;
  }
  for (int number = 1; number <= MAX_COPIES; ++number) {
    envelope = numbered(pair.envelope, number);
    const int error = copyPair(pair, number);
    if (error == 0 || (error == EEXIST && isCopy(pair, envelope, numbered(pair.message, number)))) {
      return true;
    }
    if (error != EEXIST) {
      why = plat::lastFailure().path + ": " + plat::errorText(error);
      return false;
    }
  }
  why = "too many copies of the same name";
  return false;
}

}  // namespace

bool keepCopy(GMA_Message& message, const std::string& sourceDirectory, std::string& envelope,
              std::string& why) {
  unsigned int status = 0;
  plat::clearFailure();
  if (const auto failure = GENCatch([&] { message.save(nullptr, status); })) {
    why = *failure;
    return false;
  }
  const auto& pair = dynamic_cast<const GMA_FilePair&>(message);
  if (status == 0) {
    envelope = pair.fetchedEnvelope().c_str();
    return true;
  }
  if (status != FL_EXISTS) {
    why = "status " + std::to_string(status);
    if (plat::lastFailure().error != 0) {
      why += ", " + plat::lastFailure().path + ": " + plat::errorText(plat::lastFailure().error);
    }
    return false;
  }
  return keepBesideEarlier(
      {sourceDirectory, pair.fetchedEnvelope().c_str(), pair.fetchedMessage().c_str()}, envelope,
      why);
}

}  // namespace host
