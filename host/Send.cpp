// Fills a new message and stores it.
#include "host/Send.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>

#include "dac/DACMEMDA.h"
#include "gen/GENCATCH.h"
#include "gen/GENCODES.h"
#include "gma/GMAMSG.h"
#include "host/Exit.h"
#include "plat/PlatError.h"
#include "plat/PlatFile.h"
#include "plat/PlatPath.h"

namespace host {
namespace {

constexpr std::size_t BLOCK = 65536;
constexpr std::size_t BYTES_PER_LINE = 57;  // 76 characters of Base64, RFC 2045 section 6.8

// Sizes and positions of content have 32 bits; how much of it memory may hold is settled where it
// is written.
constexpr std::int64_t LARGEST = std::numeric_limits<std::int32_t>::max();

std::int64_t base64Size(std::int64_t bytes) {
  const std::int64_t groups = (bytes + 2) / 3;
  return groups * 4 + bytes / static_cast<std::int64_t>(BYTES_PER_LINE) * 2;
}

enum class Coding { none, base64 };

[[noreturn]] void refuse(const std::string& what, const std::string& detail) {
  throw Error(badMail, what + " is too large" + detail + ".");
}

// Before the content is read or anything else made of it.
void checkSize(const std::string& what, std::int64_t bytes, Coding coding) {
  const std::int64_t size = coding == Coding::base64 ? base64Size(bytes) : bytes;
  if (bytes > LARGEST || size > LARGEST) {
    refuse(what, ", a message holds at most " + std::to_string(LARGEST) + " bytes of it" +
                     (coding == Coding::base64 ? " in Base64" : ""));
  }
}

std::string readAll(const std::string& what, std::istream& stream, Coding coding) {
  std::string content;
  const auto block = std::make_unique<char[]>(BLOCK);
  while (stream) {
    stream.read(block.get(), BLOCK);
    content.append(block.get(), static_cast<std::size_t>(stream.gcount()));
    checkSize(what, static_cast<std::int64_t>(content.size()), coding);
  }
  return content;
}

// 0 or an errno value.
int readRegular(const std::string& path, Coding coding, std::string& content) {
  plat::OpenMode mode;
  mode.read = true;
  plat::File file;
  if (const int error = file.open(path, mode); error != 0) {
    return error;
  }
  checkSize(path, file.sizeAtOpen(), coding);
  content.resize(static_cast<std::size_t>(file.sizeAtOpen()));
  std::size_t length = 0;
  const int error = file.readAt(0, content.data(), content.size(), length);
  content.resize(length);
  return error;
}

// A pipe cannot be read at a position, so it is read as a stream.
std::string readFile(const std::string& path, Coding coding) {
  std::string content;
  plat::FileStatus found;
  if (plat::status(path, found) == 0 && found.kind == plat::Kind::other) {
    std::ifstream file(plat::toNative(path), std::ios::binary);
    content = readAll(path, file, coding);
  } else if (const int error = readRegular(path, coding, content); error != 0) {
    throw Error(inputOutput, path + " cannot be read, " + plat::errorText(error) + ".");
  }
  return content;
}

void encodeGroup(const unsigned char* bytes, std::size_t count, std::string& out) {
  static constexpr char ALPHABET[] =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const unsigned int b0 = bytes[0];
  const unsigned int b1 = count > 1 ? bytes[1] : 0;
  const unsigned int b2 = count > 2 ? bytes[2] : 0;
  out += ALPHABET[b0 >> 2];
  out += ALPHABET[(b0 & 3) << 4 | b1 >> 4];
  out += count > 1 ? ALPHABET[(b1 & 15) << 2 | b2 >> 6] : '=';
  out += count > 2 ? ALPHABET[b2 & 63] : '=';
}

std::string base64(const std::string& content) {
  std::string out;
  out.reserve(static_cast<std::size_t>(base64Size(static_cast<std::int64_t>(content.size()))));
  const auto* bytes = reinterpret_cast<const unsigned char*>(content.data());
  for (std::size_t i = 0; i < content.size(); i += 3) {
    encodeGroup(bytes + i, std::min<std::size_t>(3, content.size() - i), out);
    if ((i + 3) % BYTES_PER_LINE == 0) {
      out += "\r\n";
    }
  }
  return out;
}

std::unique_ptr<DAC_MemoryDataAccess> inMemory(const std::string& what,
                                               const std::string& content) {
  auto data = std::make_unique<DAC_MemoryDataAccess>();
  unsigned int status = 0;
  data->write(static_cast<std::int32_t>(content.size()), content.data(), status);
  if (status != 0) {
    refuse(what, ", status " + std::to_string(status));
  }
  return data;
}

void addAddress(GMA_Message& message, std::uint32_t type, const std::string& text) {
  const std::unique_ptr<GMA_Maddr> address(message.newAddress());
  address->setType(type);
  unsigned int status = 0;
  address->parse(text.c_str(), status);
  if (status != 0 && status != KRX_RELAYED_ADDRESS) {
    throw Error(usage, "\"" + text + "\" is not an address.");
  }
  message.addAddress(*address);
}

void attach(GMA_Message& message, const std::string& path) {
  auto data = inMemory(path, base64(readFile(path, Coding::base64)));
  const std::string name = path.substr(path.find_last_of("/\\") + 1);
  data->setStringAttribute(dac::CONTENT_TITLE, name.c_str());
  SCL_String quoted;
  SCL_quote(name.data(), name.data() + name.size(), quoted);
  data->setStringAttribute("Content-Type", SCL_String("application/octet-stream; name=") + quoted);
  data->setStringAttribute("Content-Transfer-Encoding", "base64");
  data->setStringAttribute("Content-Disposition", SCL_String("attachment; filename=") + quoted);
  message.addItem(data.release(), false);
}

void fill(GMA_Message& message, const SendOptions& options) {
  addAddress(message, gma::FROMADDR, options.from);
  for (const std::string& to : options.to) {
    addAddress(message, gma::TOADDR, to);
  }
  if (!options.subject.empty()) {
    message.headers().add(GMA_Mhdr(gma::SUBJECT, options.subject.c_str()));
  }
  if (!options.bodyFile.empty()) {
    const bool isInput = options.bodyFile == "-";
    const std::string what = isInput ? "Standard input" : options.bodyFile;
    const std::string text =
        isInput ? readAll(what, std::cin, Coding::none) : readFile(what, Coding::none);
    message.setBody(inMemory(what, text).release());
  }
  for (const std::string& path : options.attachments) {
    attach(message, path);
  }
}

}  // namespace

int send(PostOffice& office, const SendOptions& options) {
  const std::unique_ptr<GMA_Message> message(office.object->newMessage());
  fill(*message, options);
  unsigned int status = 0;
  const auto failure = GENCatch([&] { message->storeMessage(status); });
  if (failure || status != 0) {
    const plat::Failure& last = plat::lastFailure();
    throw Error(inputOutput,
                "The message cannot be delivered, " +
                    (failure ? *failure : "status " + std::to_string(status)) +
                    (last.error != 0 ? ", " + last.path + ": " + plat::errorText(last.error)
                                     : std::string()) +
                    ".");
  }
  return Exit::done;
}

}  // namespace host
