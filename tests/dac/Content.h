// The small vocabulary of the tests of content: objects made of bytes, and what they hold and give
// as printed text.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>

#include "dac/DACBASDA.h"
#include "dac/DACMEMST.h"
#include "gen/GENCODES.h"
#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "plat/PlatPath.h"

// Memory that lies ready in blocks of `block` bytes, as a file's does, or not at all (0), with the
// lines of either reader. Its reads fail with 10021 from `failAt` on.
class PartlyReadyStream : public DAC_MemoryStream {
 public:
  explicit PartlyReadyStream(std::size_t block, bool defaultLines = true,
                             std::int32_t failAt = MAX_SIZE)
      : m_block(block), m_defaultLines(defaultLines), m_failAt(failAt) {}
  std::string_view window(std::int32_t position) override {
    const auto place = static_cast<std::size_t>(position);
    return DAC_MemoryStream::window(position).substr(
        0, m_block - place % std::max<std::size_t>(m_block, 1));
  }
  std::int32_t read(std::int32_t& position, std::int32_t count, void* buffer,
                    unsigned int& status) override {
    if (status == 0 && position >= m_failAt) {
      status = DAC_READ;
    }
    const std::int64_t most = std::int64_t{m_failAt} - position;
    return DAC_MemoryStream::read(
        position, static_cast<std::int32_t>(std::min<std::int64_t>(count, most)), buffer, status);
  }
  std::int32_t readLine(std::int32_t& position, std::int32_t size, char* buffer,
                        unsigned int& status) override {
    return m_defaultLines ? DAC_Stream::readLine(position, size, buffer, status)
                          : DAC_MemoryStream::readLine(position, size, buffer, status);
  }

 private:
  std::size_t m_block;
  bool m_defaultLines;
  std::int32_t m_failAt;
};

// An object on a stream of any kind that the test makes.
class StreamAccess : public DAC_BaseDataAccess {
 public:
  explicit StreamAccess(DAC_Stream* stream, std::string_view bytes = {}) {
    m_Stream = DAC_StreamRef::adopt(stream);
    unsigned int status = 0;
    write(static_cast<std::int32_t>(bytes.size()), bytes.data(), status);
    setPosition(0, status);
    EXPECT_EQ(status, 0U);
  }
};

class MemoryAccess : public StreamAccess {
 public:
  explicit MemoryAccess(std::string_view bytes = {}) : StreamAccess(new DAC_MemoryStream, bytes) {}
};

inline std::string contentOf(DAC_BaseDataAccess& object) {
  unsigned int status = 0;
  std::string bytes(static_cast<std::size_t>(object.size(status)), '\0');
  std::int32_t position = 0;
  object.readAt(position, static_cast<std::int32_t>(bytes.size()), bytes.data(), status);
  return bytes;
}

// "line/status@position" of every readLine until the end, at most 100.
inline std::string linesOf(DAC_BaseDataAccess& object, std::int32_t size) {
  std::string lines;
  std::string buffer(static_cast<std::size_t>(size), '#');
  for (unsigned int status = 0, i = 0; status != DAC_END && i < 100; ++i) {
    status = 0;
    const std::int32_t length = object.readLine(size, buffer.data(), status);
    lines += buffer.substr(0, static_cast<std::size_t>(length)) + "/" + std::to_string(status) +
             "@" + std::to_string(object.getPosition()) + " ";
    EXPECT_EQ(buffer[static_cast<std::size_t>(length)], '\0');
  }
  return lines;
}

// A test with a directory of its own.
class DirectoryTest : public testing::Test {
 protected:
  DirectoryTest() {
    std::string pattern = testing::TempDir() + "dacXXXXXX";
    m_directory = mkdtemp(pattern.data());
  }
  ~DirectoryTest() override { std::filesystem::remove_all(m_directory); }

  std::string path(const std::string& name) const { return m_directory + "/" + name; }
  bool exists(const std::string& name) const { return std::filesystem::exists(path(name)); }
  std::string makeFile(const std::string& name, std::string_view bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }
  std::string fileContent(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::string m_directory;
};
