#include "tests/generators/HardMessages.h"

#include <algorithm>
#include <cmath>

#include "tests/generators/Random.h"

namespace kbx {
namespace {

constexpr char kBase64[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kMillion = 1000000;
constexpr std::size_t kPiece = 1 << 16;

const std::string kPlanted(kPlantedWord);
const std::string kHead =
    "From: Harbour Library <desk@library.example>\r\n"
    "Date: Wed, 10 Jan 2024 15:02:47 +0000\r\nMIME-Version: 1.0\r\n";
const std::string kMixed = "Content-Type: multipart/mixed; boundary=edge\r\n\r\n";

std::size_t scaled(std::size_t count, double scale) {
  return std::max<std::size_t>(
      1, static_cast<std::size_t>(std::llround(static_cast<double>(count) * scale)));
}

/// Collects what is written in small pieces.
class Buffer {
 public:
  explicit Buffer(const Sink& sink) : _sink(sink) {}
  ~Buffer() { _sink(_bytes); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  Buffer& operator<<(std::string_view bytes) {
    _bytes += bytes;
    if (_bytes.size() < kPiece) return *this;
    _sink(_bytes);
    _bytes.clear();
    return *this;
  }
  Buffer& operator<<(std::size_t number) { return *this << std::to_string(number); }

 private:
  const Sink& _sink;
  std::string _bytes;
};

std::string base64Line(Random& random, std::size_t length) {
  std::string line(length, '\0');
  for (char& letter : line) letter = kBase64[random.below(64)];
  return line;
}

/// An attachment of so many bytes, and behind it a text with the planted word.
void writeAttachment(const Sink& sink, std::size_t size) {
  Buffer out(sink);
  Random random(1);
  out << kHead << "Subject: A large attachment\r\n"
      << kMixed
      << "--edge\r\n\r\nIt is attached.\r\n--edge\r\n"
         "Content-Type: application/octet-stream; name=large.bin\r\n"
         "Content-Transfer-Encoding: base64\r\n\r\n";
  // Lines of a few kinds only: to make each letter anew would take longer than to import it.
  std::string lines[64];
  for (std::string& line : lines) line = base64Line(random, 76) + "\r\n";
  for (std::size_t written = 0; written < size; written += 57) out << lines[random.below(64)];
  out << "--edge\r\n\r\n" << kPlanted << "\r\n--edge--\r\n";
}

void largeAttachment(const Sink& sink, double scale) {
  writeAttachment(sink, scaled(100 * kMillion, scale));
}

void hugeAttachment(const Sink& sink, double scale) {
  writeAttachment(sink, scaled(1000 * kMillion, scale));
}

void lastAttachmentName(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << kMixed;
  for (std::size_t left = scaled(20000, scale); left > 0; --left)
    out << "--edge\r\nContent-Type: application/pdf; name=\"letter " << left
        << ".pdf\"\r\nContent-Transfer-Encoding: base64\r\n\r\nSGFyYm91cg==\r\n";
  out << "--edge\r\nContent-Type: application/pdf;\r\n name*0=\"" << kPlanted.substr(0, 5)
      << "\";\r\n name*1=\"" << kPlanted.substr(5) << ".pdf\"\r\n\r\n\r\n--edge--\r\n";
}

void base64Text(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead
      << "Content-Type: text/plain; charset=utf-8\r\n"
         "Content-Transfer-Encoding: base64\r\n\r\n";
  // "harbour ledger, " and 32 more bytes, so that no letter stands for parts of two of them.
  constexpr std::string_view kText =
      "aGFyYm91ciBsZWRnZXIsIHdlYXRoZXIgYW5kIHRpZGUgb2YgdGhlIGJlcnRocywg";
  for (auto left = scaled(50 * kMillion / kText.size(), scale); left > 0; --left) out << kText;
  out << "cXVpbGx3b3J0N2xhbnRlcm4=";  // the planted word
}

void encodedWords(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << "Subject: ";
  for (auto left = scaled(20000, scale); left > 0; --left)
    out << (left % 2 ? "=?utf-8?B?R3LDvMOfZQ==?=" : "=?iso-8859-1?Q?Gr=FC=DFe_?=") << "\r\n ";
  out << "=?utf-8?Q?_" << kPlanted << "?=\r\n\r\nA text.\r\n";
}

void longField(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << "X-Long: ";
  for (auto left = scaled(10 * kMillion / 10, scale); left > 0; --left) out << "0123456789";
  out << "\r\nSubject: " << kPlanted << "\r\n\r\nA text.\r\n";
}

void manyFields(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead;
  for (auto left = scaled(10 * kMillion / 20, scale); left > 0; --left)
    out << "X-" << 1000000 + left << ": a field\r\n";
  out << "Subject: " << kPlanted << "\r\n\r\nA text.\r\n";
}

void longHTML(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << "Content-Type: text/html; charset=utf-8\r\n\r\n<html><body>\r\n";
  constexpr std::string_view kParagraph =
      "<p style=\"margin: 0\">The <b>harbour</b> &amp; the ledger of <a href=\"#x\">berths</a>, "
      "gr\xC3\xBC\xC3\x9F"
      "e</p>\r\n";
  for (auto left = scaled(20 * kMillion / kParagraph.size(), scale); left > 0; --left)
    out << kParagraph;
  out << "<p>" << kPlanted << "</p></body></html>\r\n";
}

void deepHTML(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << "Content-Type: text/html; charset=utf-8\r\n\r\n<html><body>\r\n";
  const std::size_t depth = scaled(100000, scale);
  for (std::size_t i = 0; i < depth; ++i)
    out << (i % 2 ? "<div>" : "<b>") << (i % 50 ? "" : "\r\n");
  out << kPlanted;
  for (std::size_t i = depth; i > 0; --i) out << (i % 2 ? "</b>" : "</div>");
  out << "</body></html>\r\n";
}

void manyParts(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << kMixed;
  for (auto left = scaled(100000, scale); left > 0; --left)
    out << "--edge\r\nContent-Type: text/plain\r\n\r\npart " << left << "\r\n";
  out << "--edge\r\n\r\n" << kPlanted << "\r\n--edge--\r\n";
}

void manyReferences(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << "References:";
  for (auto left = scaled(100000, scale); left > 0; --left)
    out << " <" << left << "@thread.example>\r\n";
  out << " <" << kPlanted << "@thread.example>\r\n\r\nA text.\r\n";
}

void writeNested(const Sink& sink, std::size_t depth) {
  Buffer out(sink);
  for (std::size_t i = 0; i < depth; ++i)
    out << "Subject: within " << i << "\r\nContent-Type: message/rfc822\r\n\r\n";
  out << "Subject: innermost\r\n\r\n" << kPlanted << "\r\n";
}

void nestedMessages(const Sink& sink, double scale) { writeNested(sink, scaled(500, scale)); }
void deepMessages(const Sink& sink, double scale) { writeNested(sink, scaled(2000, scale)); }

void nestedParts(const Sink& sink, double scale) {
  Buffer out(sink);
  for (std::size_t i = 0, depth = scaled(2000, scale); i < depth; ++i)
    out << "Content-Type: multipart/mixed; boundary=edge" << i << "\r\n\r\n--edge" << i << "\r\n";
  out << "\r\n" << kPlanted << "\r\n";
}

void manyRecipients(const Sink& sink, double scale) {
  Buffer out(sink);
  out << kHead << "To: ";
  for (auto left = scaled(50000, scale); left > 0; --left)
    out << "\"Reader, No. " << left << "\" <reader" << left << "@library.example>,\r\n ";
  out << kPlanted << "@library.example\r\n\r\nA text.\r\n";
}

constexpr std::string_view kText = "kMDItemTextContent";
constexpr std::string_view kSubject = "kMDItemSubject";

constexpr HardMessage kMessages[] = {
    {"large-attachment", "an attachment of 100 MB", kText, false, largeAttachment},
    {"huge-attachment", "an attachment of 1 GB", kText, true, hugeAttachment},
    {"many-attachments", "20,000 attachments", "kMDItemAttachmentNames", false, lastAttachmentName},
    {"base64-line", "50 MB of base64 in one line", kText, false, base64Text},
    {"encoded-words", "20,000 encoded words in a header", kSubject, false, encodedWords},
    {"long-field", "a header field of 10 MB", kSubject, false, longField},
    {"many-fields", "a header of 10 MB in 500,000 fields", kSubject, false, manyFields},
    {"long-html", "20 MB of HTML", kText, false, longHTML},
    {"deep-html", "HTML nested 100,000 deep", kText, false, deepHTML},
    {"many-parts", "100,000 parts", kText, false, manyParts},
    {"many-references", "100,000 references", "org_ferncase_mail_references", false,
     manyReferences},
    {"nested-messages", "messages nested 500 deep", kText, false, nestedMessages},
    {"deep-messages", "messages nested 2,000 deep", kText, false, deepMessages},
    {"nested-parts", "containers of parts nested 2,000 deep", kText, false, nestedParts},
    {"many-recipients", "50,000 recipients", "kMDItemRecipientEmailAddresses", false,
     manyRecipients},
};

}  // namespace

std::span<const HardMessage> hardMessages() { return kMessages; }

const HardMessage* hardMessageNamed(std::string_view name) {
  const auto* found = std::find_if(std::begin(kMessages), std::end(kMessages),
                                   [&](const HardMessage& each) { return each.name == name; });
  return found == std::end(kMessages) ? nullptr : found;
}

}  // namespace kbx
