// The phonebook of the dial-up service: every entry read and written back.
#include "fuzz/Fuzz.h"
#include "ras/rasbook.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  return fuzz::run([&] {
    const ras::Phonebook book(fuzz::fileWith(fuzz::viewOf(data, size)).c_str());
    std::vector<ras::Entry> entries;
    book.readAll(entries);
    for (const ras::Entry& entry : entries) {
      book.write(entry, {entry.properties, entry.alternates, entry.deviceInfo});
      ras::Entry again;
      fuzz::require(book.read(entry.name, again) == ras::Error{}, "an entry can be read again");
      fuzz::require(again.alternateBlock() == entry.alternateBlock(), "its numbers are the same");
    }
  });
}
