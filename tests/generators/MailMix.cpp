#include "tests/generators/MailMix.h"

#include <cstdio>
#include <vector>

#include "tests/generators/Encodings.h"
#include "tests/generators/Envelope.h"
#include "tests/generators/Parts.h"

namespace kbx {
namespace {

constexpr std::size_t kFilesInFolder = 1000;

std::string mailbox(const Person& person, const Language& language, Random& random) {
  if (person.name.empty()) return person.address;
  if (isASCII(person.name)) return '"' + person.name + "\" <" + person.address + ">";
  return encodedWords(person.name, random.chance(50) ? language.traits().charset : "utf-8",
                      random.chance(50)) +
         " <" + person.address + ">";
}

void addPeople(std::string& header, std::string_view name, const std::vector<Person>& people,
               const Language& language, Random& random) {
  if (people.empty()) return;
  ((header += name) += ": ") += mailbox(people.front(), language, random);
  for (std::size_t i = 1; i < people.size(); ++i)
    header += ",\n\t" + mailbox(people[i], language, random);
  header += '\n';
}

/// What the servers on the way put in front.
void addTrace(std::string& header, const Envelope& envelope, Random& random) {
  header += "Return-Path: <" + envelope.sender.address + ">\n";
  for (auto hops = random.between(1, 5); hops > 0; --hops)
    header += "Received: from mx" + std::to_string(hops) +
              ".example.net (mx.example.net [192.0.2." + std::to_string(random.below(256)) +
              "])\n\tby in" + std::to_string(hops) + ".example.org (Postfix) with ESMTPS id " +
              std::to_string(random.next()) + "\n\tfor <" + envelope.recipients.front().address +
              ">; " + dateText(envelope.date + static_cast<std::int64_t>(hops) * 3, 0) + "\n";
  if (random.chance(60)) {
    std::string seal;
    for (int line = 0; line < 5; ++line)
      seal += "\n\t" + base64Lines(std::string(51, static_cast<char>(random.below(256))));
    while (seal.find("\n\n") != std::string::npos) seal.erase(seal.find("\n\n"), 1);
    header +=
        "DKIM-Signature: v=1; a=rsa-sha256; c=relaxed/relaxed; d=example.org; s=mail;\n"
        "\th=from:to:subject:date:message-id; bh=47DEQpj8HBSa+/TImW+5JCeuQeRkm5NMpJWZG3hS;\n"
        "\tb=" +
        seal.substr(2);
  }
}

void addThread(std::string& header, const Envelope& envelope) {
  if (!envelope.references.empty()) {
    header += "In-Reply-To: <" + envelope.references.back() + ">\nReferences:";
    for (const std::string& reference : envelope.references) header += " <" + reference + ">\n";
  }
  if (!envelope.list.empty())
    header += "List-Id: " + envelope.list + " <" + envelope.list +
              ".lists.example.org>\nList-Unsubscribe: <mailto:" + envelope.list +
              "-request@lists.example.org?subject=unsubscribe>\nPrecedence: list\n";
}

std::string headerOf(const Envelope& envelope, Random& random) {
  const Language& language = *envelope.language;
  std::string header;
  addTrace(header, envelope, random);
  header += "Date: " + dateText(envelope.date, envelope.zone) + "\n";
  addPeople(header, "From", {envelope.sender}, language, random);
  addPeople(header, "To", envelope.recipients, language, random);
  addPeople(header, "Cc", envelope.copies, language, random);
  header += "Subject: ";
  // Some programs send UTF-8 in headers as it is.
  header += random.chance(4) ? envelope.subject
                             : encodedWords(envelope.subject,
                                            random.chance(40) ? language.traits().charset : "utf-8",
                                            random.chance(60));
  header += "\nMessage-ID: <" + envelope.messageID + ">\n";
  addThread(header, envelope);
  if (random.chance(50))
    header += "X-Mailer: Harbour Mail " + std::to_string(random.below(12)) + ".1\n";
  if (random.chance(5)) header += "X-Priority: " + std::to_string(random.between(1, 5)) + "\n";
  if (random.chance(30)) header += random.chance(20) ? "X-Spam-Flag: YES\n" : "X-Spam-Flag: NO\n";
  return header += "MIME-Version: 1.0\n";
}

Part alternative(const Language& language, Random& random, std::string_view mark, bool quotes) {
  const std::string text = letter(language, random, mark, quotes);
  const Part plain = textPart("plain", text, language, random);
  return multipart("alternative", {plain, textPart("html", htmlLetter(text), language, random)},
                   random);
}

/// The letter itself, plain or in two forms.
Part bodyText(const Envelope& envelope, Random& random, std::string_view mark) {
  const bool quotes = !envelope.references.empty() && random.chance(70);
  if (random.chance(50)) return alternative(*envelope.language, random, mark, quotes);
  return textPart("plain", letter(*envelope.language, random, mark, quotes), *envelope.language,
                  random);
}

Part forwarded(const Envelope& envelope, Random& random, const std::string& mark) {
  const Language& language = *envelope.language;
  std::string inner = "From: " + mailbox(anyPerson(random), language, random) +
                      "\nDate: " + dateText(envelope.date - 90000, 0) +
                      "\nSubject: " + encodedWords(language.phrase(random, 4), "utf-8", true) +
                      "\n";
  inner += textPart("plain", letter(language, random, "", false), language, random).bytes();
  return multipart(
      "mixed", {bodyText(envelope, random, mark), Part{"Content-Type: message/rfc822\n", inner}},
      random);
}

Part withAttachments(const Envelope& envelope, Random& random, const std::string& mark) {
  std::vector<Part> parts{bodyText(envelope, random, mark)};
  const std::size_t drawn = random.below(100);
  for (std::size_t left = drawn < 75 ? 1 : random.between(2, 3); left > 0; --left)
    parts.push_back(attachment(*envelope.language, random));
  return multipart("mixed", parts, random);
}

Part bodyOf(const Envelope& envelope, Random& random, const std::string& mark) {
  const Language& language = *envelope.language;
  const std::size_t drawn = random.below(100);
  if (drawn < 34)
    return textPart("plain", letter(language, random, mark, random.chance(40)), language, random);
  if (drawn < 66) return alternative(language, random, mark, random.chance(40));
  if (drawn < 79) return textPart("html", newsletter(language, random, mark), language, random);
  if (drawn < 92) return withAttachments(envelope, random, mark);
  if (drawn < 95) return forwarded(envelope, random, mark);
  if (drawn < 98) return signedPart(bodyText(envelope, random, mark), random);
  return {"", letter(language, random, mark, false)};  // no word about type or charset
}

/// Breaks some messages in a way that loses no text of theirs.
void breakSome(std::string& message, Random& random) {
  const std::size_t drawn = random.below(100);
  if (drawn == 0) message.insert(0, "From someone@example.org Wed Jan 10 15:02:47 2024\n");
  if (drawn == 1 && message.ends_with("--\n")) message.resize(message.rfind("\n--"));
  if (drawn == 2) message.insert(message.find("MIME-Version"), "Subject: a second one\n");
  if (drawn == 3) message.insert(0, "X-Odd: \xE4\xF6 \xFF\xFE\n=?utf-8?Q?=C3?=\n");
}

}  // namespace

std::string MailMix::message(std::size_t index) const {
  const Envelope envelope = envelopeOf(_seed, _count, index);
  Random random(_seed, index);
  std::string message = headerOf(envelope, random);
  message += bodyOf(envelope, random, mark(index)).bytes();
  breakSome(message, random);
  return random.chance(50) ? withReturns(message) : message;
}

std::string MailMix::fileName(std::size_t index) {
  char name[64];
  std::snprintf(name, sizeof name, "%03zu/%06zu.eml", index / kFilesInFolder, index);
  return name;
}

std::string MailMix::mark(std::size_t index) {
  char mark[32];
  std::snprintf(mark, sizeof mark, "mark%07zu", index);
  return mark;
}

}  // namespace kbx
