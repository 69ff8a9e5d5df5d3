#include "mail/MessageReader.h"

#include <utility>

#include "mail/ASCII.h"
#include "mail/FlowedText.h"
#include "mail/HeaderFields.h"
#include "mail/MediaTypes.h"
#include "mail/SignedContent.h"

namespace kbx {
namespace {

constexpr std::size_t kLongestLine = 1 << 16;    // in one piece; longer ones come in several
constexpr std::size_t kLongestHeader = 1 << 26;  // what is beyond is not looked at
constexpr std::size_t kLongestSuspects = 1 << 13;
constexpr std::size_t kLongestBoundary = 1 << 10;
constexpr std::size_t kLongestPreamble = 1 << 20;
constexpr std::size_t kMostContainers = 4096;
constexpr std::size_t kMostAlternatives = 8;  // one in another: each copies its text once
constexpr std::size_t kMostForms = 16;        // of one text; more are one with the last
constexpr int kMostEmbedding = 4;             // each holds its bytes

std::string_view withoutLineEnd(std::string_view line) {
  if (line.ends_with('\n')) line.remove_suffix(1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

/// Takes the first line, its end included, away from the text.
std::string_view takeFirstLine(std::string_view* text) {
  const std::string_view line = text->substr(0, text->find('\n'));
  const std::size_t length = std::min(line.size() + 1, text->size());
  const std::string_view whole = text->substr(0, length);
  text->remove_prefix(length);
  return whole;
}

/// Where the first line ends that one with two dashes follows; npos without one.
std::size_t findDashedLine(std::string_view bytes) {
  constexpr std::size_t kBlock = 64;
  constexpr std::string_view kDashed = "\n--";
  std::size_t at = 0;
  // A loop over so many bytes that nothing ends early is made of vectors by the compiler.
  for (; at + kBlock + kDashed.size() <= bytes.size(); at += kBlock) {
    const char* const block = bytes.data() + at;
    unsigned char isThere = 0;
    for (std::size_t i = 0; i < kBlock; ++i)
      isThere |= static_cast<unsigned char>((block[i] == '\n') & (block[i + 1] == '-'));
    if (!isThere) continue;
    const std::size_t found = bytes.substr(at, kBlock + kDashed.size() - 1).find(kDashed);
    if (found != std::string_view::npos) return at + found;
  }
  return bytes.find(kDashed, at);
}

std::string_view withoutBlanksBehind(std::string_view line) {
  while (!line.empty() && isSpace(line.back())) line.remove_suffix(1);
  return line;
}

}  // namespace

MessageReader::MessageReader(TextDecoder& decoder, int embedding)
    : _decoder(decoder), _embedding(embedding) {}

MessageReader::~MessageReader() = default;

// ---- Lines ----

void MessageReader::add(std::string_view bytes) {
  while (!bytes.empty()) {
    if (const std::size_t body = bodyLength(bytes)) {
      addBody(bytes.substr(0, body));
      bytes.remove_prefix(body);
      continue;
    }
    const std::size_t end = bytes.find('\n');
    const std::size_t length = end == std::string_view::npos ? bytes.size() : end + 1;
    const std::string_view piece = bytes.substr(0, length);
    bytes.remove_prefix(length);
    const bool isWhole = end != std::string_view::npos;
    if (_isInLongLine) {
      continueLine(piece);
      _isInLongLine = !isWhole;
    } else if (isWhole && _line.empty()) {
      takeLine(piece);
    } else {
      _line += piece;
      if (!isWhole && _line.size() < kLongestLine) continue;
      _isInLongLine = !isWhole;
      const std::string line = std::move(_line);
      _line.clear();
      takeLine(line);
    }
  }
}

/// How many bytes at the start are whole lines of a body, none of which can be a boundary. These
/// need not be looked at one by one.
std::size_t MessageReader::bodyLength(std::string_view bytes) const {
  const bool isInBody = _state == State::Skipping || (_state == State::Body && _leafBody);
  if (!isInBody || _isInLongLine || !_line.empty() || bytes.starts_with("--")) return 0;
  std::size_t end = findDashedLine(bytes);
  if (end == std::string_view::npos) end = bytes.rfind('\n');
  return end == std::string_view::npos ? 0 : end + 1;
}

/// More of a line that is too long to be a boundary.
void MessageReader::continueLine(std::string_view piece) {
  if (_state != State::Header) return addBody(piece);
  if (_header.size() < kLongestHeader) _header += piece;
}

void MessageReader::takeLine(std::string_view line) {
  if (line.starts_with("--") && takeBoundary(line)) return;
  if (_state == State::Header)
    takeHeaderLine(line);
  else
    addBody(line);
}

MessageContent MessageReader::take() {
  if (!_line.empty()) takeLine(std::exchange(_line, {}));
  if (_state == State::Header) giveUpHeader();
  endLeaf();
  closeContainers(0);
  return std::move(_content);
}

// ---- Header ----

void MessageReader::takeHeaderLine(std::string_view line) {
  const bool isFirst = _header.empty() && _suspects.empty();
  // Editors put a mark of UTF-8 in front of a file.
  if (isFirst && _isTop && line.starts_with("\xEF\xBB\xBF")) line.remove_prefix(3);
  const std::string_view text = withoutLineEnd(line);
  const bool isOfMessage = _containers.empty() || !_containers.back().isMultipart;
  if (isFirst && isOfMessage && (text.starts_with("From ") || text.starts_with(">From ")))
    return;  // of an mbox
  if (withoutBlanksBehind(text).empty()) {
    // Blank lines before everything else are a slip, not a message without a header.
    if (isFirst && _isTop && _containers.empty()) return;
    if (text.empty() || !_suspects.empty()) {
      const bool isOfBody = !_suspects.empty();
      giveUpHeader();
      return isOfBody && _state != State::Header ? addBody(line) : void();
    }
  }
  const bool isContinued = !text.empty() && (text[0] == ' ' || text[0] == '\t');
  const bool belongs = (isContinued && !_header.empty()) || fieldNameLength(text) > 0;
  if (!belongs || (!_suspects.empty() && !beginsWithUsualField(text))) return takeSuspect(line);
  if (!_suspects.empty()) {
    // The header goes on after all: the lines between were folded without an indent.
    for (std::string_view rest = _suspects; !rest.empty();)
      (_header += ' ') += takeFirstLine(&rest);
    _suspects.clear();
  }
  if (_header.size() < kLongestHeader) _header += line;
}

/// Keeps a line that is no header field until it is known whether the body has begun here.
void MessageReader::takeSuspect(std::string_view line) {
  _suspects += line;
  if (_header.empty() || _suspects.size() > kLongestSuspects) giveUpHeader();
}

/// Ends the header; what did not belong to it is the body's.
void MessageReader::giveUpHeader() {
  const std::string body = std::exchange(_suspects, {});
  endHeader();
  for (std::string_view rest = body; !rest.empty();) takeLine(takeFirstLine(&rest));
}

void MessageReader::endHeader() {
  _state = State::Skipping;
  const std::string header = std::exchange(_header, {});
  const HeaderFields fields(header);
  ContentField type(fields[HeaderField::ContentType]);
  const ContentField disposition(fields[HeaderField::ContentDisposition]);
  const bool isInDigest = !_containers.empty() && _containers.back().isDigest;
  if (type.value().empty() && isInDigest) type = ContentField("message/rfc822");
  const std::string_view encoding = fields[HeaderField::ContentTransferEncoding];
  recordAttachment(type, disposition);
  beginEntity(type, disposition, encoding);
  if (std::exchange(_isTop, false)) _content.header = std::move(header);
}

// ---- Entities ----

void MessageReader::recordAttachment(const ContentField& type, const ContentField& disposition) {
  if (_messageCount > 0) return;
  // Parameters of nothing are nobody's, as every reader has it.
  std::string name;
  if (!disposition.value().empty()) name = disposition.text("filename", _decoder);
  if (name.empty()) name = type.text("name", _decoder);
  const bool isMeant = disposition.value() == "attachment" || !name.empty();
  const bool isWrapping = isSignature(type.value()) || isSignedOrEncrypted(type.value());
  _content.hasAttachment |=
      _encryptedCount == 0 && !isWrapping && (isMeant || isAttachment(type.value()));
  if (!name.empty()) _content.namedParts.push_back({std::move(name), type.value()});
}

void MessageReader::beginEntity(const ContentField& type, const ContentField& disposition,
                                std::string_view encoding) {
  const std::string& media = type.value();
  if (media.starts_with("multipart/") && _containers.size() < kMostContainers)
    return beginMultipart(type);
  if (isMessage(media) && _containers.size() < kMostContainers) return beginMessage(encoding);
  if (isSignedOrEncrypted(media)) {
    const bool isSealed = isEncryptedOnly(type.parameter("smime-type"));
    _content.isEncrypted |= isSealed && _messageCount == 0;
    return isSealed ? void() : beginLeaf(Leaf::Signed, type, encoding);
  }
  if (disposition.value() == "attachment" || _encryptedCount > 0) return;
  if (media == "text/html" || media == "application/xhtml+xml")
    beginLeaf(Leaf::HTML, type, encoding);
  else if (isShownAsText(media))
    beginLeaf(Leaf::Plain, type, encoding);
}

void MessageReader::beginMultipart(const ContentField& type) {
  const std::string_view kind = std::string_view(type.value()).substr(10);
  Container container;
  container.isMultipart = true;
  container.isAlternative = kind == "alternative" && _alternativeCount < kMostAlternatives;
  container.isDigest = kind == "digest";
  container.isEncrypted = kind == "encrypted";
  container.preamble = std::make_unique<std::string>();
  const bool isOwn = _messageCount == 0;
  _content.isEncrypted |= isOwn && container.isEncrypted;
  _content.isSigned |= isOwn && kind == "signed";
  const std::string boundary = type.parameter("boundary").substr(0, kLongestBoundary);
  container.awaitsBoundary = withoutBlanksBehind(boundary).empty();
  openContainer(std::move(container));
  if (!_containers.back().awaitsBoundary)
    declareBoundary(_containers.size() - 1, withoutBlanksBehind(boundary));
  _state = State::Body;
}

void MessageReader::beginMessage(std::string_view encoding) {
  const std::string name = lowercase(trimmed(encoding));
  if (name == "base64" || name == "quoted-printable")
    return beginLeaf(Leaf::Message, ContentField(), encoding);
  openContainer(Container());
  _state = State::Header;
}

void MessageReader::beginLeaf(Leaf leaf, const ContentField& type, std::string_view encoding) {
  _leaf = leaf;
  _leafType = type;
  _leafBody = std::make_unique<TransferDecoder>(encoding);
  _state = State::Body;
}

// ---- Bodies ----

void MessageReader::addBody(std::string_view bytes) {
  if (_state == State::Skipping) return;
  if (_leafBody) return _leafBody->add(bytes);
  if (_containers.empty()) return;
  Container& container = _containers.back();
  if (container.preamble && container.preamble->size() < kLongestPreamble)
    *container.preamble += bytes;
}

void MessageReader::endLeaf() {
  if (!_leafBody) return;
  std::string bytes = _leafBody->take();
  _leafBody.reset();
  const Leaf leaf = std::exchange(_leaf, Leaf::None);
  if (leaf == Leaf::Plain || leaf == Leaf::HTML) {
    _leaf = leaf;
    endText(std::move(bytes));
    _leaf = Leaf::None;
  } else if (leaf == Leaf::Message) {
    ++_messageCount;
    readEmbedded(std::move(bytes));
    --_messageCount;
  } else {
    endSigned(std::move(bytes));
  }
}

void MessageReader::endText(std::string bytes) {
  std::string charset = _leafType.parameter("charset");
  // Programs that know no better call everything ASCII; the page itself may.
  const bool isUnknown = charset.empty() || isSameWord(charset, "us-ascii");
  if (isUnknown && _leaf == Leaf::HTML) charset = charsetOfHTML(bytes);
  std::string text = _decoder.text(std::move(bytes), charset);
  const bool isOwn = _messageCount == 0;
  if (isOwn && _content.charset.empty()) _content.charset = std::move(charset);
  if (_leaf == Leaf::HTML) {
    _content.hasHTMLPart |= isOwn && !trimmed(text).empty();
    return _content.sections.addHTML(std::move(text));
  }
  if (startsSealed(text)) {
    _content.isEncrypted |= isOwn;
    text = std::string(textBehindSeal(text));
  }
  _content.hasPlainPart |= isOwn && !trimmed(text).empty() && isPlainText(_leafType.value());
  if (isSameWord(_leafType.parameter("format"), "flowed"))
    text = textFromFlowed(text, isSameWord(_leafType.parameter("delsp"), "yes"));
  _content.sections.addPlain(std::move(text));
}

void MessageReader::endSigned(std::string bytes) {
  bool isEncrypted = false;
  std::string part = signedContent(std::move(bytes), &isEncrypted);
  if (_messageCount == 0) {
    _content.isEncrypted |= isEncrypted;
    _content.isSigned |= !part.empty();
  }
  readEmbedded(std::move(part));
}

/// Reads a message, or a part, that only its decoded bytes show.
void MessageReader::readEmbedded(std::string bytes) {
  if (_embedding >= kMostEmbedding)
    return _content.sections.addPlain(_decoder.text(std::move(bytes), {}));
  MessageReader reader(_decoder, _embedding + 1);
  reader.add(bytes);
  bytes = {};
  MessageContent inner = reader.take();
  _content.sections.append(std::move(inner.sections));
  if (_messageCount > 0) return;
  _content.isSigned |= inner.isSigned;
  _content.isEncrypted |= inner.isEncrypted;
  _content.hasAttachment |= inner.hasAttachment;
  for (Attachment& part : inner.namedParts) _content.namedParts.push_back(std::move(part));
}

// ---- Containers ----

void MessageReader::openContainer(Container container) {
  _messageCount += !container.isMultipart;
  _encryptedCount += container.isEncrypted;
  _alternativeCount += container.isAlternative;
  _containers.push_back(std::move(container));
}

void MessageReader::declareBoundary(std::size_t index, std::string_view boundary) {
  Container& container = _containers[index];
  container.boundary = boundary;
  auto [entry, isNew] = _boundaries.try_emplace(container.boundary, static_cast<int>(index));
  if (isNew) return;
  container.hiddenBoundary = std::exchange(entry->second, static_cast<int>(index));
}

int MessageReader::containerOf(std::string_view delimiter) const {
  const auto entry = _boundaries.find(std::string(delimiter));
  return entry == _boundaries.end() ? -1 : entry->second;
}

/// Whether the line was a boundary of one of the open containers, and was acted on.
bool MessageReader::takeBoundary(std::string_view line) {
  // No field begins like this: the blank line behind the header is missing.
  if (_state == State::Header) giveUpHeader();
  if (_containers.empty() || line.size() > kLongestBoundary + 8) return false;
  const std::string_view delimiter = withoutBlanksBehind(line).substr(2);
  if (_containers.back().awaitsBoundary && _state == State::Body) adoptBoundary(delimiter);
  int index = containerOf(delimiter);
  const bool isLast = index < 0 && delimiter.ends_with("--");
  if (isLast) index = containerOf(delimiter.substr(0, delimiter.size() - 2));
  if (index < 0) return false;
  endLeaf();
  closeContainers(static_cast<std::size_t>(index) + 1);
  _state = State::Skipping;  // behind the last part, until a boundary comes after all
  if (!isLast) beginPart(static_cast<std::size_t>(index));
  return true;
}

void MessageReader::adoptBoundary(std::string_view delimiter) {
  if (delimiter.empty() || delimiter.find_first_not_of('-') == std::string_view::npos) return;
  _containers.back().awaitsBoundary = false;
  declareBoundary(_containers.size() - 1, delimiter);
}

void MessageReader::beginPart(std::size_t index) {
  Container& container = _containers[index];
  container.hasParts = true;
  container.preamble.reset();
  if (container.isAlternative && container.starts.size() < kMostForms)
    container.starts.push_back(_content.sections.mark());
  _state = State::Header;
}

void MessageReader::closeContainers(std::size_t count) {
  while (_containers.size() > count) {
    Container container = std::move(_containers.back());
    _containers.pop_back();
    _messageCount -= !container.isMultipart;
    _encryptedCount -= container.isEncrypted;
    _alternativeCount -= container.isAlternative;
    if (!container.boundary.empty()) {
      if (container.hiddenBoundary >= 0)
        _boundaries[container.boundary] = container.hiddenBoundary;
      else
        _boundaries.erase(container.boundary);
    }
    // Text in the place of parts was meant to be read.
    if (!container.hasParts && container.preamble && _encryptedCount == 0)
      _content.sections.addPlain(_decoder.text(std::move(*container.preamble), {}));
    if (container.isAlternative) _content.sections.mergeAlternatives(container.starts);
  }
}

}  // namespace kbx
