// MessageReader: the parts of a message, found while its bytes pass by.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "mail/ContentField.h"
#include "mail/MessageContent.h"
#include "mail/TextDecoder.h"
#include "mail/TransferDecoder.h"
#include "platform/objects/SeededHash.h"

namespace kbx {

/// Takes a message in pieces of any size and collects its header, its text and the names of its
/// attachments. Time is in proportion to the bytes; memory holds the header, the text and a few
/// words for each open part. Bodies of attachments pass by undecoded.
///
/// The structure is read here and not by the MIME library, whose tree takes about 2 KB for each
/// part and 500 bytes for each header field, and whose messages own their addresses: a message of
/// 4 MB in 100,000 parts takes 190 MB there. Its decoders are used.
///
/// Broken structure is read as a careful person would: an outer boundary ends the inner parts, a
/// missing one ends with the message, what never had a boundary is text, and what is nested deeper
/// than anybody nests is text as well.
class MessageReader {
 public:
  /// decoder  must outlive this
  explicit MessageReader(TextDecoder& decoder) : MessageReader(decoder, 0) {}
  ~MessageReader();

  void add(std::string_view bytes);
  /// What was found. The reader is used no more afterwards.
  MessageContent take();

 private:
  /// A multipart or an attached message that is open.
  struct Container {
    bool isMultipart = false;
    bool isAlternative = false;
    bool isDigest = false;
    bool isEncrypted = false;
    bool awaitsBoundary = false;  // none was declared: the first line like one is it
    bool hasParts = false;
    std::string boundary;
    int hiddenBoundary = -1;          // the outer container of the same boundary
    std::vector<std::size_t> starts;  // of an alternative's forms
    std::unique_ptr<std::string> preamble;
  };
  enum class State : unsigned char { Header, Body, Skipping };
  enum class Leaf : unsigned char { None, Plain, HTML, Message, Signed };

  MessageReader(TextDecoder& decoder, int embedding);

  void takeLine(std::string_view line);
  std::size_t bodyLength(std::string_view bytes) const;
  void continueLine(std::string_view piece);
  void takeHeaderLine(std::string_view line);
  void takeSuspect(std::string_view line);
  void endHeader();
  void giveUpHeader();

  void beginEntity(const ContentField& type, const ContentField& disposition,
                   std::string_view encoding);
  void beginMultipart(const ContentField& type);
  void beginMessage(std::string_view encoding);
  void beginLeaf(Leaf leaf, const ContentField& type, std::string_view encoding);
  void recordAttachment(const ContentField& type, const ContentField& disposition);

  void addBody(std::string_view bytes);
  void endLeaf();
  void endText(std::string bytes);
  void endSigned(std::string bytes);
  void readEmbedded(std::string bytes);

  bool takeBoundary(std::string_view line);
  int containerOf(std::string_view delimiter) const;
  void adoptBoundary(std::string_view line);
  void beginPart(std::size_t index);
  void closeContainers(std::size_t count);
  void openContainer(Container container);
  void declareBoundary(std::size_t index, std::string_view boundary);

  TextDecoder& _decoder;
  const int _embedding;  // how many encoded messages this one lies in
  MessageContent _content;
  std::vector<Container> _containers;
  // The innermost container of each. The texts are a stranger's.
  std::unordered_map<std::string, int, SeededHash> _boundaries;
  std::size_t _encryptedCount = 0;  // open containers whose parts are nobody's to read
  std::size_t _messageCount = 0;    // open attached messages
  std::size_t _alternativeCount = 0;

  State _state = State::Header;
  std::string _line;  // the start of a line whose end has not come
  bool _isInLongLine = false;
  std::string _header;    // of the entity that begins
  std::string _suspects;  // lines in a header that belong to none
  bool _isTop = true;     // the entity is the message itself

  Leaf _leaf = Leaf::None;
  ContentField _leafType;
  std::unique_ptr<TransferDecoder> _leafBody;
};

}  // namespace kbx
