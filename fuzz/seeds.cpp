// Writes the seed corpora: krx-seeds EXAMPLES DIRECTORY makes DIRECTORY/<target>/* from the sample
// spool and from small texts that show each construct once.
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

constexpr char DIVIDER[] = "\x1f";

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The seeds of one target, numbered.
class Seeds {
 public:
  Seeds(const fs::path& directory, const char* target) : m_directory(directory / target) {
    fs::create_directories(m_directory);
  }
  void add(const std::string& text) {
    std::ofstream(m_directory / ("seed" + std::to_string(m_count++)), std::ios::binary) << text;
  }
  void add(std::initializer_list<const char*> texts) {
    for (const char* text : texts) {
      add(std::string(text));
    }
  }

 private:
  fs::path m_directory;
  int m_count = 0;
};

std::string headerBlock(const std::string& mail) {
  return mail.substr(0, mail.find("\r\n\r\n") + 4);
}

std::string body(const std::string& mail) {
  const std::size_t end = mail.find("\r\n\r\n");
  return end == std::string::npos ? mail : mail.substr(end + 4);
}

std::string boundaryOf(const std::string& mail) {
  const std::size_t start = mail.find("boundary=");
  if (start == std::string::npos) {
    return "b";
  }
  const std::string rest = mail.substr(start + 9, mail.find("\r\n", start) - start - 9);
  return rest.front() == '"' ? rest.substr(1, rest.find('"', 1) - 1) : rest;
}

void seedsOfSpool(const fs::path& examples, const fs::path& directory) {
  Seeds message(directory, "message"), roundtrip(directory, "roundtrip");
  Seeds headers(directory, "headers"), multipart(directory, "multipart");
  Seeds codecs(directory, "codecs"), envelope(directory, "envelope");
  Seeds text(directory, "template");
  for (const fs::directory_entry& entry : fs::directory_iterator(examples / "spool")) {
    const std::string content = readFile(entry.path());
    if (entry.path().extension() == ".RCP") {
      envelope.add(content);
      continue;
    }
    message.add(content);
    roundtrip.add(content);
    headers.add(headerBlock(content));
    multipart.add(boundaryOf(content) + DIVIDER + body(content));
    codecs.add(body(content));
    text.add(std::string("From %SENDER% on %DATE%: %SUBJECT% 100%%\r\n%NAME%\r\n") + DIVIDER +
             content);
  }
}

void seedsOfValues(const fs::path& directory) {
  Seeds(directory, "values")
      .add({"text/plain; charset=us-ascii",
            "multipart/mixed; boundary=\"a b\" (c (d)) ; x=\"\\\"\"",
            "attachment; filename=\"a.txt\"", "base64", "12 text, 3 message, uuencode", "text/",
            "text plain; charset", "\"a\\001\" [1.2.3.4] <a@b>, (c)"});
  Seeds(directory, "addresses")
      .add({"a@b", "Ann <a@b.c>", "<@x,@y:a@b>", "host!user", "user%host@relay", "\"a b\"@c (d)",
            "/G=John/S=Smith@x", "/RFC-822=carol(a)example.com@x", "/PN=Jane Doe/@[1.2.3.4]",
            "group: a@b, c@d;", "\"a\\\"b\"@c"});
  Seeds(directory, "codecs")
      .add({"a=3D=\r\nb=20\r\n=e9=\t\r\n==\r\n", "aGVsbG8=\r\n", "aGVsbG8\r\n", "a*G=V===\n",
            "Message body suppressed\r\n"});
}

void seedsOfTexts(const fs::path& directory) {
  Seeds pattern(directory, "pattern");
  for (const char* text : {"5-JAN-1998", "12:30:15.5", "+1:02:03:04", "YES", "-17", "Brief",
                           "C:\\a\\b.txt", "1.5e3 \"a\"\"b\" FF"}) {
    pattern.add(std::string("{2+A|B}[{*C}]{#D|E}T{/RUE}%U %2C%S|") + DIVIDER + text);
  }
  Seeds(directory, "profile")
      .add({"[Fuzz]\nEntry = a, b, c\nEntry[2] = d ; e\n; comment\n\n[Other]\nx=1\nx=2\n",
            "[Fuzz\nEntry=1\n", "= a\n[]\n[ ]\n,\n", "[A]\r\nYes = YES\rNumber = -12\r\n"});
  Seeds(directory, "phonebook")
      .add({"[Office]\nCommand = /bin/true\nAreaCode = 30\nLocalPhoneNumber = 555\n"
            "AlternatePhoneNumber = 556\nAlternatePhoneNumber = 557\n",
            "[A]\nCountryId = 49\nOptions = 0x10\nIpAddress = 1.2.3.4\n"});
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: krx-seeds EXAMPLES DIRECTORY\n";
    return 64;
  }
  const fs::path directory = argv[2];
  seedsOfSpool(argv[1], directory);
  seedsOfValues(directory);
  seedsOfTexts(directory);
}
