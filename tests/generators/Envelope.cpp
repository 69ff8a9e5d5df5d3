#include "tests/generators/Envelope.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>

namespace kbx {
namespace {

constexpr std::int64_t kFirstDate = 1388534400;  // 2014-01-01
constexpr std::int64_t kYears = 12;
constexpr std::int64_t kSecondsPerYear = 31556952;
constexpr std::size_t kPeople = 2000;
constexpr std::size_t kMostBetweenAnswers = 40;

constexpr const char* kDomains[] = {"example.org",       "example.com",      "example.net",
                                    "mail.example.com",  "harbour.example",  "library.example",
                                    "lists.example.org", "news.example.com", "office.example",
                                    "garten.example",    "почта.example",    "uni.example.edu"};
constexpr const char* kLists[] = {"harbour-users", "dev", "announce", "garden-club",
                                  "reading-room"};

// What random numbers are for, so that one more of a kind leaves those of the others as they are.
enum Purpose : std::uint64_t { kThread = 1, kSubject, kPersons, kTime, kIdentity };

Random randomFor(std::uint64_t seed, std::size_t index, Purpose purpose) {
  return Random(seed * 8 + purpose, index);
}

/// Which message is answered by this one, if any.
std::optional<std::size_t> answeredBy(std::uint64_t seed, std::size_t index) {
  Random random = randomFor(seed, index, kThread);
  if (index == 0 || !random.chance(55)) return std::nullopt;
  return index - 1 - random.below(std::min(index, kMostBetweenAnswers));
}

std::string messageIDOf(std::uint64_t seed, std::size_t index) {
  Random random = randomFor(seed, index, kIdentity);
  return std::to_string(random.next()) + "." + std::to_string(index) + "@" +
         kDomains[random.below(10)];
}

/// The person of a rank. The name is in a language of theirs.
Person person(std::size_t rank) {
  Random random(77, rank);
  const Language& language = anyLanguage(random);
  const std::string given = language.phrase(random, 1), family = language.phrase(random, 1);
  const std::string login = languages().front().word(random);
  Person person{given + " " + family,
                login + std::to_string(rank) + "@" + kDomains[random.below(std::size(kDomains))]};
  if (random.chance(10)) person.name.clear();
  if (random.chance(5)) person.name = family + ", " + given;
  return person;
}

std::vector<Person> somePeople(Random& random, std::size_t count) {
  std::vector<Person> people;
  while (people.size() < count) people.push_back(anyPerson(random));
  return people;
}

/// Mostly one or two, now and then the whole office.
std::size_t recipientCount(Random& random) {
  const std::size_t drawn = random.below(100);
  if (drawn < 75) return 1;
  return drawn < 97 ? random.between(2, 6) : random.between(10, 60);
}

void setThread(Envelope& envelope, std::uint64_t seed, std::size_t index) {
  std::size_t root = index;
  for (auto answered = answeredBy(seed, index); answered; answered = answeredBy(seed, root))
    envelope.references.insert(envelope.references.begin(), messageIDOf(seed, root = *answered));
  Random random = randomFor(seed, root, kSubject);
  envelope.language = &anyLanguage(random);
  envelope.subject = envelope.language->phrase(random, random.between(2, 9));
  if (random.chance(18)) envelope.list = kLists[random.below(std::size(kLists))];
  if (!envelope.list.empty()) envelope.subject = "[" + envelope.list + "] " + envelope.subject;
  if (index != root) envelope.subject = "Re: " + envelope.subject;
}

void setPeople(Envelope& envelope, Random random) {
  envelope.sender = anyPerson(random);
  envelope.recipients = somePeople(random, recipientCount(random));
  if (!envelope.list.empty())
    envelope.recipients.insert(envelope.recipients.begin(),
                               {"", envelope.list + "@lists.example.org"});
  if (random.chance(20)) envelope.copies = somePeople(random, random.between(1, 5));
}

}  // namespace

Person anyPerson(Random& random) {
  // A chance in proportion to 1/rank: below a limit that is itself random.
  const std::size_t limit = random.between(1, kPeople);
  return person(random.below(random.between(1, limit)));
}

Envelope envelopeOf(std::uint64_t seed, std::size_t count, std::size_t index) {
  Envelope envelope{};
  setThread(envelope, seed, index);
  setPeople(envelope, randomFor(seed, index, kPersons));
  Random random = randomFor(seed, index, kTime);
  // Each has its slice of the years, so that no answer is older than what it answers.
  const std::int64_t slice = kYears * kSecondsPerYear / static_cast<std::int64_t>(count);
  envelope.date = kFirstDate + slice * static_cast<std::int64_t>(index) +
                  static_cast<std::int64_t>(random.next() % static_cast<std::uint64_t>(slice));
  envelope.zone = static_cast<int>(random.below(21)) - 10;
  envelope.messageID = messageIDOf(seed, index);
  return envelope;
}

std::string dateText(std::int64_t date, int zone) {
  using namespace std::chrono;
  constexpr const char* kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                     "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
  constexpr const char* kWeekdays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
  const sys_seconds local{seconds(date) + hours(zone)};
  const auto day = floor<days>(local);
  const year_month_day civil(day);
  const hh_mm_ss time(local - day);
  char text[64];
  std::snprintf(text, sizeof text, "%s, %u %s %d %02d:%02d:%02d %c%02d00",
                kWeekdays[weekday(day).c_encoding()], unsigned{civil.day()},
                kMonths[unsigned{civil.month()} - 1], int{civil.year()},
                static_cast<int>(time.hours().count()), static_cast<int>(time.minutes().count()),
                static_cast<int>(time.seconds().count()), zone < 0 ? '-' : '+',
                zone < 0 ? -zone : zone);
  return text;
}

}  // namespace kbx
