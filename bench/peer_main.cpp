// krx-peer: the work of krx-load done with GMime, for comparison.
//
//   krx-peer DIR [--repeat K]             both files of every pair; every part is decoded into
//   memory krx-peer --addresses FILE [--repeat K]  one address list
//
// GMime reads each file through its file stream, as its own examples do. It knows neither
// dot-stuffing nor the final full stop.
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmime/gmime.h>

#include "plat/PlatMemory.h"

namespace {

struct Unref {
  void operator()(void* object) const noexcept { g_object_unref(object); }
};
template <class T>
using Ref = std::unique_ptr<T, Unref>;

struct Totals {
  std::uint64_t messages = 0;
  std::uint64_t bytes = 0;
  std::uint64_t parts = 0;
  std::uint64_t decoded = 0;
  std::uint64_t headers = 0;
  std::uint64_t addresses = 0;
};

std::uint64_t countHeaders(void* object) {
  return static_cast<std::uint64_t>(
      g_mime_header_list_get_count(g_mime_object_get_header_list(GMIME_OBJECT(object))));
}

std::uint64_t countAddresses(const char* text) {
  const Ref<InternetAddressList> list(internet_address_list_parse(nullptr, text));
  return list ? static_cast<std::uint64_t>(internet_address_list_length(list.get())) : 0;
}

Ref<GMimeParser> openParser(const std::string& path, Totals* totals) {
  const Ref<GMimeStream> stream(g_mime_stream_fs_open(path.c_str(), O_RDONLY, 0, nullptr));
  if (!stream) {
    std::perror(path.c_str());
    std::exit(EXIT_FAILURE);
  }
  if (totals != nullptr) {
    totals->bytes += static_cast<std::uint64_t>(g_mime_stream_length(stream.get()));
  }
  return Ref<GMimeParser>(g_mime_parser_new_with_stream(stream.get()));
}

// The envelope is a header block; its addresses are parsed as ours are.
void loadEnvelope(const std::string& path, Totals& totals) {
  const Ref<GMimeParser> parser = openParser(path, nullptr);
  const Ref<GMimeObject> envelope(g_mime_parser_construct_part(parser.get(), nullptr));
  GMimeHeaderList* headers = g_mime_object_get_header_list(envelope.get());
  for (int i = 0; i < g_mime_header_list_get_count(headers); ++i) {
    GMimeHeader* header = g_mime_header_list_get_header_at(headers, i);
    const char* name = g_mime_header_get_name(header);
    if (g_ascii_strcasecmp(name, "Recipient") == 0 ||
        g_ascii_strcasecmp(name, "Return-path") == 0) {
      totals.addresses += countAddresses(g_mime_header_get_raw_value(header));
    }
  }
}

void decodePart(GMimeObject* /*parent*/, GMimeObject* part, void* data) {
  auto& totals = *static_cast<Totals*>(data);
  totals.headers += countHeaders(part);
  if (!GMIME_IS_PART(part)) {
    return;
  }
  ++totals.parts;
  const Ref<GMimeStream> memory(g_mime_stream_mem_new());
  g_mime_data_wrapper_write_to_stream(g_mime_part_get_content(GMIME_PART(part)), memory.get());
  totals.decoded += static_cast<std::uint64_t>(g_mime_stream_length(memory.get()));
}

void loadMessage(const std::string& path, Totals& totals) {
  const Ref<GMimeParser> parser = openParser(path, &totals);
  const Ref<GMimeMessage> message(g_mime_parser_construct_message(parser.get(), nullptr));
  ++totals.messages;
  totals.headers += countHeaders(message.get());
  g_mime_message_foreach(message.get(), decodePart, &totals);
}

void loadAll(const std::string& directory, Totals& totals) {
  for (const auto& entry : std::filesystem::directory_iterator(directory)) {
    if (entry.path().extension() == ".RCP") {
      loadEnvelope(entry.path(), totals);
      loadMessage(std::filesystem::path(entry.path()).replace_extension(".MSG"), totals);
    }
  }
}

void parseAddresses(const std::string& path, Totals& totals) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  totals.addresses += countAddresses(text.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  const bool addresses = argc > 2 && std::strcmp(argv[1], "--addresses") == 0;
  const int first = addresses ? 2 : 1;
  if (argc <= first) {
    std::fputs("usage: krx-peer DIR|--addresses FILE [--repeat K]\n", stderr);
    return EXIT_FAILURE;
  }
  const bool repeated = argc > first + 2 && std::strcmp(argv[first + 1], "--repeat") == 0;
  const unsigned long repeat = repeated ? std::strtoul(argv[first + 2], nullptr, 10) : 1;
  plat::keepFreedMemory();  // to the peer's gain as to ours
  g_mime_init();
  Totals totals;
  for (unsigned long pass = 0; pass < repeat; ++pass) {
    addresses ? parseAddresses(argv[first], totals) : loadAll(argv[first], totals);
  }
  std::printf("messages %" PRIu64 " bytes %" PRIu64 " parts %" PRIu64 " decoded %" PRIu64
              " headers %" PRIu64 " addresses %" PRIu64 "\n",
              totals.messages, totals.bytes, totals.parts, totals.decoded, totals.headers,
              totals.addresses);
  return EXIT_SUCCESS;
}
