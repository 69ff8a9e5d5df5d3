#include "host/search/FoundWriter.h"

#include <gtest/gtest.h>

#include "tests/support/FakeLocalTime.h"
#include "tests/support/MailStore.h"

namespace kbx {
namespace {

class FoundWriterTest : public testing::Test {
 protected:
  std::string written(std::string_view query, FoundSettings settings) {
    StringOutput output;
    const auto writer = makeFoundWriter(output, *_reader, std::move(settings));
    Search search(*_reader, parseQuery(query));
    writer->begin();
    EXPECT_TRUE(search.run([&](auto id) { return writer->found(search, id, nullptr); }, nullptr));
    writer->end();
    return output.text();
  }

  FakeLocalTime _zone{7200};
  ScopedService<LocalTime> _installedZone{_zone};
  MailStore _store{{{.path = "/mail/a.eml",
                     .subject = "The engine",
                     .body = "It weaves.",
                     .authors = {"Ada Lovelace", "Bob"},
                     .authorAddresses = {"ada@example.org", "bob@example.org"},
                     .date = 1715952600},
                    {.path = "/mail/\x1B[2J.eml",
                     .subject = "evil\x1B[31m",
                     .authors = {"会議室会議室会議室会議室会議室会議室"},
                     .authorAddresses = {"x@example.org"}}}};
  std::unique_ptr<StoreReader> _reader = _store.reader();
};

using Form = FoundSettings::Form;

TEST_F(FoundWriterTest, PeopleSeeTheirOwnTimeTheFirstSenderAndTheSubject) {
  EXPECT_EQ(written("weaves", {.form = Form::Lines}),
            "2024-05-17 15:30  Ada Lovelace              The engine  /mail/a.eml\n");
}

TEST_F(FoundWriterTest, ColoursMarkWhatWasFound) {
  EXPECT_EQ(written("weaves", {.form = Form::Lines, .hasSnippets = true, .hasColours = true}),
            "2024-05-17 15:30  Ada Lovelace              The engine  "
            "\x1B[2m/mail/a.eml\x1B[0m\n"
            "    It \x1B[1;31mweaves\x1B[0m.\n");
  EXPECT_EQ(written("weaves", {.form = Form::Paths, .hasSnippets = true}),
            "/mail/a.eml\n    It weaves.\n");
}

TEST_F(FoundWriterTest, NothingInAMessageDrivesTheTerminal) {
  const std::string line = written("evil", {.form = Form::Lines, .hasSnippets = true});
  EXPECT_EQ(line.find('\x1B'), std::string::npos) << line;
  EXPECT_NE(line.find("\\u001b[2J.eml"), std::string::npos) << line;
}

TEST_F(FoundWriterTest, WideNamesFillTheirColumn) {
  const std::string line = written("evil", {.form = Form::Lines});
  EXPECT_TRUE(line.starts_with(std::string(16, ' ') + "  会議室会議室会議室会議室  ")) << line;
}

TEST_F(FoundWriterTest, WhatIsUnknownIsNullInObjects) {
  const std::string line = written("evil", {.form = Form::JSONLines});
  EXPECT_NE(line.find("\"date\": null"), std::string::npos) << line;
}

TEST_F(FoundWriterTest, AMessageThatHasGoneIsTold) {
  StringOutput output;
  const auto writer = makeFoundWriter(output, *_reader, {});
  Search search(*_reader, parseQuery("*"));
  EXPECT_FALSE(writer->found(search, 9999, nullptr));
}

}  // namespace
}  // namespace kbx
