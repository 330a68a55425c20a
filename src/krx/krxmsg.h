// KRX_Message: a message that comes from a pair of spool files, or is to become one: the envelope
// (.RCP) and the RFC 822 text (.MSG). docs/formats describes both files. Destroying a fetched
// message removes its pair from the source directory.
#pragma once

#include <memory>

#include "gma/GMAMSG.h"
#include "gma/GMAPAIR.h"
#include "krx/krxspool.h"
#include "scl/SCLSTRNG.h"

class ATR_AttributeList;
class DAC_FileDataAccess;
class DV_DateTime;
class KRX_NameDraw;

// What a post office hands to each of its messages. Directories end in a backslash.
struct KRX_MessageSettings {
  SCL_String sourceDirectory;
  SCL_String destinationDirectory;
  SCL_String mailDomain;
  SCL_String containerClass;
  std::shared_ptr<KRX_StuckPairs> stuckPairs;  // may be null
};

class KRX_Message : public GMA_Message, public GMA_FilePair {
 public:
  // An inbound pair.
  KRX_Message(GMA_PostOffice* postOffice, const KRX_PairNames& names,
              const KRX_MessageSettings& settings);
  // A new outbound message; its file names are chosen when it is stored.
  KRX_Message(GMA_PostOffice* postOffice, const KRX_MessageSettings& settings);

  ~KRX_Message() override;
  GMA_Maddr* newAddress() override;
  // The day of the Resent-Date or Date field; the time of day and the zone are not read.
  bool getDate(DV_Date& date) override;
  // Reads envelope and message file. 11968, 11969: cannot be opened; 11981, 11982, 11990, 10132,
  // 12001, ...: bad mail. What was read before a failure stays.
  void loadMessage(unsigned int& status) override;
  // Writes a new pair into the destination directory: message file first, whole and committed, then
  // under the directory's lock the envelope. A failure leaves no message file behind.
  void storeMessage(unsigned int& status) override;
  // Copies the fetched pair into QDXRECVR under the source directory and commits the copies.
  void save(void* argument, unsigned int& status) override;

  // The operations behind these, each on an open stream.
  void readEnvelope(DAC_BaseDataAccess& stream, unsigned int& status);
  void addEnvelopeAddress(std::uint32_t type, const SCL_StringRef& text, unsigned int& status);
  void writeEnvelope(DAC_BaseDataAccess& stream, unsigned int& status);
  void chooseFileNames(unsigned int& status);
  void readMessage(DAC_BaseDataAccess& stream, unsigned int& status);
  void writeMessage(DAC_BaseDataAccess& stream, unsigned int& status);
  void dump(const SCL_StringRef& name, std::ostream& stream, SCL_DumpIndent& indent) const;

  const SCL_String& envelopeFile() const noexcept { return m_rcp_file; }
  const SCL_String& messageFile() const noexcept { return m_msg_file; }
  // What loadMessage reads, save copies and the destructor removes.
  const SCL_String& fetchedEnvelope() const noexcept override { return m_fetched_rcp; }
  const SCL_String& fetchedMessage() const noexcept override { return m_fetched_msg; }

  // Day of month, month, year of the century and time, as the Date field carries them.
  static SCL_String formatDate(const DV_DateTime& time);
  // "MIME_Text" and its like for a media type; empty for any other.
  static const char* containerName(const SCL_StringRef& type);

 private:
  enum class LineKind { content = 0, boundary = 1, closing = 2 };
  struct ContentType {
    SCL_String type;
    SCL_String subtype;
    std::unique_ptr<ATR_AttributeList> parameters;
    ContentType();
    ~ContentType();
    bool isMultipart() const noexcept { return SCL_equalNoCase(type, "multipart"); }
    const SCL_String* parameter(const char* name) const;
  };
  struct Layout;
  struct PresentFields;

  // Inbound (krxin.cpp, krxinmp.cpp).
  int classifyContentType(const GMA_MhdrTable& headers, ContentType& type, unsigned int& status);
  LineKind readPart(DAC_BaseDataAccess& stream, const GMA_MhdrTable& headers, bool nested,
                    const SCL_StringRef& boundary, const ContentType& type, unsigned int& status);
  void readMultipart(DAC_BaseDataAccess& stream, const ContentType& type, unsigned int& status);
  LineKind readNestedPart(DAC_BaseDataAccess& stream, const SCL_StringRef& boundary,
                          unsigned int& status);
  LineKind readUntilBoundary(DAC_BaseDataAccess& stream, const SCL_StringRef& boundary,
                             std::uint32_t headerType, unsigned int& status);
  static LineKind classifyLine(std::string_view line, std::string_view boundary) noexcept;
  static LineKind peekLine(DAC_BaseDataAccess& stream, const SCL_StringRef& boundary);
  static std::unique_ptr<DAC_BaseDataAccess> readPartContent(DAC_BaseDataAccess& stream,
                                                             const SCL_StringRef& boundary,
                                                             LineKind& kind, unsigned int& status);
  static std::unique_ptr<DAC_BaseDataAccess> makeView(std::unique_ptr<DAC_BaseDataAccess> data,
                                                      const ContentType& type,
                                                      const SCL_StringRef& encoding, bool& isView);
  void setPartAttributes(DAC_BaseDataAccess& data, const ContentType& type, bool isView,
                         std::uint32_t size) const;
  void placePart(std::unique_ptr<DAC_BaseDataAccess> data, const ContentType& type,
                 unsigned int& status);
  void copyHeadersToAttributes();

  // Outbound (krxout.cpp, krxoutmp.cpp).
  void logNamelessHeaders(const Layout& layout) const;
  void writeHeader(DAC_BaseDataAccess& stream, const GMA_Mhdr& header, unsigned int& status);
  void writeHeaderBlock(DAC_BaseDataAccess& stream, const Layout& layout, unsigned int& status);
  void writeHeaderBlock(DAC_BaseDataAccess& stream, const Layout& layout, bool bare,
                        unsigned int& status);
  bool keepsStructure(const GMA_MhdrTable& found, const Layout& layout) const;
  void writeMissingFields(DAC_BaseDataAccess& stream, const PresentFields& present,
                          unsigned int& status);
  void writeAddressLines(DAC_BaseDataAccess& stream, std::uint32_t mask, unsigned int& status);
  Layout planLayout();
  bool ownContentType(ContentType& type);
  SCL_String drawBoundary();
  void writeSinglePart(DAC_BaseDataAccess& stream, unsigned int& status);
  void writeMultipart(DAC_BaseDataAccess& stream, const Layout& layout, unsigned int& status);
  void writePart(DAC_BaseDataAccess& stream, DAC_BaseDataAccess& data, bool generated,
                 const Layout& layout, unsigned int& status);
  void writePartHeaders(DAC_BaseDataAccess& stream, DAC_BaseDataAccess& data, bool generated,
                        const Layout& layout, unsigned int& status);
  static void writePartContent(DAC_BaseDataAccess& stream, DAC_BaseDataAccess& data,
                               unsigned int& status);
  DAC_BaseDataAccess& part(unsigned int index) const;  // the body first, then the items
  unsigned int partCount() const noexcept {
    return (m_body != nullptr ? 1U : 0U) + m_items.count();
  }

  // Names and delivery (krxname.cpp, krxstore.cpp).
  bool baseNameFromHeader(SCL_String& base) const;
  void dropMessageIdHeaders();
  void addMessageIdHeader(const SCL_StringRef& base);
  void forgetNames();
  bool namesAreFree() const;
  void chooseFileNames(KRX_NameDraw& draw, unsigned int& status);
  void checkFreeSpace(unsigned int& status);
  void deliver(unsigned int& status);
  std::unique_ptr<DAC_FileDataAccess> createMessageFile(KRX_NameDraw& draw, KRX_FileGuard& guard,
                                                        unsigned int& status);
  void completePair(KRX_FileGuard& messageFile, unsigned int& status);
  void loadPair(unsigned int& status);
  unsigned int copyToReceiver() const;
  void removeFetchedPair();

  SCL_String m_rcp_file;
  SCL_String m_msg_file;
  SCL_String m_src_dir;
  SCL_String m_dst_dir;
  SCL_String m_dflt_domain;
  SCL_String m_container_class;
  std::uint32_t m_loaded = 0;
  // The names under which the pair was fetched: storing a fetched message may choose others, but it
  // is these that are loaded, saved and removed.
  SCL_String m_fetched_rcp;
  SCL_String m_fetched_msg;
  std::shared_ptr<KRX_StuckPairs> m_stuck;
};
