// Copies pairs into the receiver directory. The message's own save never replaces an earlier copy
// of the same name; where one stands in the way, the pair is kept under a name with a number. A
// name that is too long beside the receiver directory's is kept under a short one.
#include "host/Receiver.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <memory>

#include "dv/DVPATH.h"
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

// In the receiver directory.
struct PairNames {
  std::string envelope;
  std::string message;
  bool areShort = false;
};

std::string numbered(const std::string& name, int number) {
  const std::size_t point = name.rfind('.');
  return number == 0 ? name
                     : name.substr(0, point) + "-" + std::to_string(number) + name.substr(point);
}

bool fits(const std::string& receiver, const std::string& name) {
  return receiver.size() + name.size() <= dv::PATH_LENGTH;
}

// The beginning of the name and a check sum (FNV-1a) of all of it: the same at each failure of one
// pair, and another one for a name that only ends otherwise.
std::string shortened(const std::string& receiver, const std::string& name) {
  constexpr std::size_t LONGEST = 64;
  constexpr std::size_t BEHIND = sizeof "-01234567-10000.RCP" - 1;
  const std::size_t point = name.rfind('.');
  const std::size_t taken = std::min<std::size_t>(receiver.size() + BEHIND, dv::PATH_LENGTH);
  std::uint32_t sum = 0x811C9DC5;
  for (const char c : name.substr(0, point)) {
    sum = (sum ^ static_cast<unsigned char>(c)) * 0x01000193;
  }
  char digits[16];
  std::snprintf(digits, sizeof digits, "-%08x", static_cast<unsigned int>(sum));
  return name.substr(0, std::min({point, LONGEST, dv::PATH_LENGTH - taken})) + digits +
         name.substr(point);
}

// The names of a pair in the receiver directory when `number` others have stood in the way.
PairNames namesFor(const PairPaths& pair, int number) {
  const std::string receiver = pair.directory + RECEIVER_DIRECTORY;
  const bool isShort = !fits(receiver, numbered(pair.envelope, number));
  const auto nameFor = [&](const std::string& name) {
    return numbered(isShort ? shortened(receiver, name) : name, number);
  };
  return {nameFor(pair.envelope), nameFor(pair.message), isShort};
}

// Message file first, so that the copy is never an envelope without its message, and never beside
// an envelope that is not its own.
int copyPair(const PairPaths& pair, const PairNames& names) {
  const std::string receiver = pair.directory + RECEIVER_DIRECTORY;
  plat::FileStatus found;
  int error = plat::status(receiver + names.envelope, found, false);
  if (error != 0 || found.kind != plat::Kind::missing) {
    return error != 0 ? error : EEXIST;
  }
  const std::string message = receiver + names.message;
  const CopyOptions committed{.commit = true};
  error = copyExclusively(pair.directory + pair.message, message, committed);
  if (error != 0) {
    return error;
  }
  error = copyExclusively(pair.directory + pair.envelope, receiver + names.envelope, committed);
  if (error == 0) {
    return plat::commitDirectory(receiver);
  }
  plat::remove(message);
  return error;
}

bool isCopy(const PairPaths& pair, const PairNames& names) {
  const std::string receiver = pair.directory + RECEIVER_DIRECTORY;
  return sameContent(pair.directory + pair.envelope, receiver + names.envelope) == 1 &&
         sameContent(pair.directory + pair.message, receiver + names.message) == 1;
}

std::optional<KeptCopy> keepUnderFreeName(const PairPaths& pair, std::string& why) {
  for (int number = 0; number <= MAX_COPIES; ++number) {
    const PairNames names = namesFor(pair, number);
    const int error = copyPair(pair, names);
    if (error == 0 || (error == EEXIST && isCopy(pair, names))) {
      return KeptCopy{names.envelope, names.areShort};
    }
    if (error != EEXIST) {
      why = plat::lastFailure().path + ": " + plat::errorText(error);
      return std::nullopt;
    }
  }
  why = "too many copies of the same name";
  return std::nullopt;
}

// What the message's own save could not do because of the name alone.
bool needsOtherName(const PairPaths& pair, unsigned int status) {
  return status == FL_EXISTS || status == FL_DIRECTORY ||
         (status == FL_MALFORMED && !fits(pair.directory + RECEIVER_DIRECTORY, pair.envelope));
}

}  // namespace

bool hasReceiver(const std::string& sourceDirectory) {
  std::string path = sourceDirectory + RECEIVER_DIRECTORY;
  path.pop_back();  // behind a separator a link would be followed
  plat::FileStatus found;
  return plat::status(path, found, false) == 0 && found.kind == plat::Kind::directory;
}

std::optional<KeptCopy> keepCopy(GMA_Message& message, const std::string& sourceDirectory,
                                 std::string& why) {
  unsigned int status = 0;
  plat::clearFailure();
  if (const auto failure = GENCatch([&] { message.save(nullptr, status); })) {
    why = *failure;
    return std::nullopt;
  }
  const auto& fetched = dynamic_cast<const GMA_FilePair&>(message);
  const PairPaths pair{sourceDirectory, fetched.fetchedEnvelope().c_str(),
                       fetched.fetchedMessage().c_str()};
  if (status == 0) {
    return KeptCopy{pair.envelope, false};
  }
  if (!needsOtherName(pair, status)) {
    why = "status " + std::to_string(status);
    if (plat::lastFailure().error != 0) {
      why += ", " + plat::lastFailure().path + ": " + plat::errorText(plat::lastFailure().error);
    }
    return std::nullopt;
  }
  if (!hasReceiver(sourceDirectory)) {
    why = sourceDirectory + RECEIVER_DIRECTORY + " is a link or no directory";
    return std::nullopt;
  }
  return keepUnderFreeName(pair, why);
}

}  // namespace host
