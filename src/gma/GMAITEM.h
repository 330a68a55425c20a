// GMA_Item: one further part of a message: its content, and whether it came with the message as it
// was received.
#pragma once

#include <cstdint>
#include <iosfwd>

class DAC_BaseDataAccess;
class SCL_DumpIndent;
class SCL_StringRef;

class GMA_Item {
 public:
  // Owns `data`, which may be null.
  GMA_Item(DAC_BaseDataAccess* data, bool original) noexcept
      : m_original(original ? 1 : 0), m_data(data) {}
  GMA_Item(const GMA_Item&) = delete;
  GMA_Item& operator=(const GMA_Item&) = delete;
  ~GMA_Item();

  // The content, which stays this item's.
  DAC_BaseDataAccess* getData() const noexcept { return m_data; }
  // Owns `data` from now on; the object that it replaces is not deleted and becomes the caller's.
  void setData(DAC_BaseDataAccess* data) noexcept { m_data = data; }
  bool isOriginal() const noexcept { return m_original != 0; }
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

 private:
  std::uint32_t m_original;
  DAC_BaseDataAccess* m_data;
};
