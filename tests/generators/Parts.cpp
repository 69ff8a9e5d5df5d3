#include "tests/generators/Parts.h"

#include <algorithm>
#include <cstring>

#include "tests/generators/Encodings.h"

namespace kbx {
namespace {

struct Kind {
  const char *type, *suffix;
};
constexpr Kind kKinds[] = {
    {"application/pdf", ".pdf"},
    {"image/jpeg", ".jpg"},
    {"image/png", ".png"},
    {"application/vnd.openxmlformats-officedocument.wordprocessingml.document", ".docx"},
    {"application/zip", ".zip"},
    {"application/octet-stream", ".bin"},
    {"text/csv", ".csv"},
    {"text/calendar", ".ics"}};

constexpr std::string_view kHead =
    "<!DOCTYPE html PUBLIC \"-//W3C//DTD XHTML 1.0 Transitional//EN\" "
    "\"http://www.w3.org/TR/xhtml1/DTD/xhtml1-transitional.dtd\">\n"
    "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html\">\n"
    "<title></title>\n<style type=\"text/css\">\n"
    "body { margin: 0; padding: 0; font-family: Helvetica, Arial, sans-serif; color: #333333 }\n"
    "p { margin: 0 0 10px 0; line-height: 1.4 } a { color: #1155cc; text-decoration: none }\n"
    "table { border-collapse: collapse; mso-table-lspace: 0pt; mso-table-rspace: 0pt }\n"
    "@media only screen and (max-width: 600px) { .column { width: 100% !important } }\n"
    "</style></head>\n";

/// Mostly short, sometimes long.
std::size_t wordCount(Random& random) {
  const std::size_t drawn = random.below(100);
  if (drawn < 40) return random.between(20, 120);
  return drawn < 88 ? random.between(120, 600) : random.between(600, 4000);
}

std::size_t attachmentSize(Random& random) {
  const std::size_t drawn = random.below(100);
  if (drawn < 65) return random.between(3000, 60000);
  return drawn < 93 ? random.between(60000, 200000) : random.between(200000, 600000);
}

std::string randomBytes(Random& random, std::size_t count) {
  std::string bytes(count, '\0');
  for (std::size_t at = 0; at < count; at += sizeof(std::uint64_t)) {
    const std::uint64_t drawn = random.next();
    std::memcpy(bytes.data() + at, &drawn, std::min(sizeof drawn, count - at));
  }
  return bytes;
}

std::string quoted(const std::string& text) {
  std::string result = "> ";
  for (const char byte : text) (result += byte) += byte == '\n' ? "> " : "";
  result.resize(result.size() - 2);
  return result;
}

/// As a transfer encoding of a mail program.
Part encoded(const std::string& type, const std::string& bytes, Random& random) {
  const std::size_t drawn = random.below(100);
  if (isASCII(bytes) && drawn < 80) return {type + "Content-Transfer-Encoding: 7bit\n", bytes};
  if (drawn < 20) return {type + "Content-Transfer-Encoding: 8bit\n", bytes};
  if (drawn < 65 && bytes.find('\n') != std::string::npos)
    return {type + "Content-Transfer-Encoding: quoted-printable\n", quotedPrintable(bytes)};
  return {type + "Content-Transfer-Encoding: base64\n", base64Lines(bytes)};
}

std::string link(Random& random) {
  return "https://news.example.com/click/" + std::to_string(random.next()) + "/" +
         std::to_string(random.next()) +
         "?utm_source=mail&amp;utm_campaign=" + std::to_string(random.below(1000));
}

/// One box of a newsletter.
std::string box(const Language& language, Random& random) {
  return "<table width=\"100%\" border=\"0\" cellspacing=\"0\" cellpadding=\"0\" "
         "role=\"presentation\">\n<tr><td class=\"column\" align=\"left\" valign=\"top\" "
         "style=\"padding: 18px 24px 18px 24px; font-size: 14px; line-height: 20px\">\n"
         "<a href=\"" +
         link(random) + "\"><img src=\"https://img.example.com/" + std::to_string(random.next()) +
         ".png\" width=\"280\" height=\"140\" alt=\"" + language.phrase(random, 2) +
         "\" style=\"display: block; border: 0\"></a>\n<h2 style=\"font-size: 18px\">" +
         language.phrase(random, 4) + "</h2>\n<p style=\"color: #444444; font-family: Georgia\">" +
         language.paragraph(random, random.between(15, 70)) + "&nbsp;<a href=\"" + link(random) +
         "\">" + language.phrase(random, 2) + "</a></p>\n</td></tr></table>\n";
}

}  // namespace

Part textPart(std::string_view subtype, const std::string& text, const Language& language,
              Random& random) {
  std::string charset = "utf-8";
  std::string bytes = text;
  if (random.chance(35)) {
    if (auto converted = inCharset(text, language.traits().charset)) {
      charset = language.traits().charset;
      bytes = std::move(*converted);
    }
  }
  std::string type = "Content-Type: text/" + std::string(subtype);
  if (!random.chance(3)) type += "; charset=" + charset;
  return encoded(type + "\n", bytes, random);
}

Part multipart(std::string_view subtype, const std::vector<Part>& parts, Random& random) {
  const std::string boundary = "----=_Part_" + std::to_string(random.next());
  Part whole{
      "Content-Type: multipart/" + std::string(subtype) + ";\n\tboundary=\"" + boundary + "\"\n",
      "This is a message with several parts in MIME format.\n"};
  for (const Part& part : parts) whole.body += "\n--" + boundary + "\n" + part.bytes();
  whole.body += "\n--" + boundary + "--\n";
  return whole;
}

Part attachment(const Language& language, Random& random) {
  const Kind& kind = kKinds[random.below(std::size(kKinds))];
  const std::string name = language.phrase(random, random.between(1, 3)) + kind.suffix;
  return {std::string("Content-Type: ") + kind.type + ";\n " + parameter("name", name) +
              "\nContent-Disposition: attachment;\n " + parameter("filename", name) +
              "\nContent-Transfer-Encoding: base64\n",
          base64Lines(randomBytes(random, attachmentSize(random)))};
}

Part signedPart(const Part& part, Random& random) {
  const bool isPGP = random.chance(50);
  const std::string seal = base64Lines(randomBytes(random, isPGP ? 540 : 3200));
  const Part signature =
      isPGP ? Part{"Content-Type: application/pgp-signature; name=\"signature.asc\"\n",
                   "-----BEGIN PGP SIGNATURE-----\n\n" + seal + "-----END PGP SIGNATURE-----\n"}
            : Part{
                  "Content-Type: application/pkcs7-signature; name=\"smime.p7s\"\n"
                  "Content-Transfer-Encoding: base64\n",
                  seal};
  return multipart(isPGP ? "signed; micalg=pgp-sha256;\n\tprotocol=\"application/pgp-signature\""
                         : "signed; micalg=sha-256;\n\tprotocol=\"application/pkcs7-signature\"",
                   {part, signature}, random);
}

std::string letter(const Language& language, Random& random, std::string_view mark, bool quotes) {
  std::string text = language.phrase(random, 2) + ",\n\n";
  for (std::size_t left = wordCount(random); left > 0;) {
    const std::size_t words = std::min(left, random.between(20, 90));
    text += language.paragraph(random, words) + "\n";
    left -= words;
  }
  (text += mark) += "\n-- \n" + language.phrase(random, 2) + "\n";
  if (quotes)
    text += "\n> " + language.phrase(random, 4) + ":\n" +
            quoted(language.paragraph(random, wordCount(random) / 2 + 1));
  return text;
}

std::string htmlLetter(const std::string& letter) {
  std::string html(kHead);
  html += "<body bgcolor=\"#ffffff\">\n<div dir=\"ltr\" style=\"font-size: small\">\n";
  for (std::size_t at = 0; at < letter.size();) {
    const std::size_t end = std::min(letter.find('\n', at), letter.size());
    const std::string line = escapedForHTML(std::string_view(letter).substr(at, end - at));
    html += line.empty() ? "<div><br></div>\n"
                         : "<div style=\"margin: 0px; font-stretch: normal; line-height: normal\">"
                           "<span style=\"font-size: 12pt\">" +
                               line + "</span></div>\n";
    at = end + 1;
  }
  return html += "</div>\n</body></html>\n";
}

std::string newsletter(const Language& language, Random& random, std::string_view mark) {
  std::string html(kHead);
  html += "<body>\n<!-- " + language.phrase(random, 5) +
          " -->\n<div style=\"display: none; max-height: 0\">" + language.phrase(random, 6) +
          "</div>\n<table width=\"600\" align=\"center\">\n";
  for (auto boxes = random.between(4, 30); boxes > 0; --boxes)
    html += "<tr><td>" + box(language, random) + "</td></tr>\n";
  (html += "<tr><td><p>") += mark;
  return html += "</p><p>&copy; 2024 &middot; <a href=\"" + link(random) +
                 "\">unsubscribe</a></p></td></tr></table>\n</body></html>\n";
}

}  // namespace kbx
