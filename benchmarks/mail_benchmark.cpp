// The mail importer on a mix of messages, beside a program on the MIME library that only parses
// each message and decodes its text.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <gmime/gmime.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "mail/ImportMessage.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kWords[] = {"harbour", "lantern", "the",   "of",     "ledger", "weather",
                                       "and",     "berth",   "tide",  "letter", "a",      "to",
                                       "Monday",  "invoice", "reply", "garden", "in",     "for"};

/// The same texts in every run.
class Text {
 public:
  std::string words(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
      (text += kWords[next() % std::size(kWords)]) += i % 12 == 11 ? '\n' : ' ';
    return text += '\n';
  }
  std::size_t next() {
    return (_state = _state * 6364136223846793005u + 1442695040888963407u) >> 40;
  }

 private:
  std::uint64_t _state = 1;
};

std::string header(Text& text, std::string_view type) {
  return "Received: from a.example.org by b.example.org with ESMTP; Wed, 10 Jan 2024 15:02:48 "
         "+0000\n"
         "Date: Wed, 10 Jan 2024 15:02:47 +0000\n"
         "From: \"Harbour Library\" <desk@library.example.org>\n"
         "To: Priya Raman <priya@example.org>, =?utf-8?q?J=C3=B6rg?= <joerg@example.org>\n"
         "Subject: =?utf-8?B?R3LDvMOfZQ==?= " +
         text.words(5) + "Message-ID: <" + std::to_string(text.next()) +
         "@library.example.org>\n"
         "MIME-Version: 1.0\nContent-Type: " +
         std::string(type) + "\n";
}

std::string html(const std::string& plain) {
  std::string text = "<html><head><style>p { color: #333 }</style></head><body>";
  for (std::size_t at = 0; at < plain.size();) {
    const std::size_t end = plain.find('\n', at);
    text += "<p style=\"margin: 0\">" + plain.substr(at, end - at) + "</p>\n";
    at = end + 1;
  }
  return text + "</body></html>\n";
}

std::string message(Text& text, std::size_t kind) {
  const std::string plain = text.words(150 + text.next() % 400);
  const std::string alternative = "--b\nContent-Type: text/plain; charset=utf-8\n\n" + plain +
                                  "--b\nContent-Type: text/html; charset=utf-8\n\n" + html(plain);
  switch (kind % 10) {
    case 0:
    case 1:
    case 2:
      return header(text, "text/plain; charset=utf-8") + "\n" + plain;
    case 3:
      return header(text, "text/plain; charset=iso-8859-1") +
             "Content-Transfer-Encoding: quoted-printable\n\nGr=FC=DFe, " + plain;
    case 4:
      return header(text, "text/html; charset=utf-8") + "\n" + html(plain);
    case 5: {
      std::string attachment;
      for (int line = 0; line < 400; ++line) attachment += std::string(76, 'Q') + "\n";
      return header(text, "multipart/mixed; boundary=b") + "\n--b\n\n" + plain +
             "--b\nContent-Type: application/pdf; name=berths.pdf\n"
             "Content-Transfer-Encoding: base64\n\n" +
             attachment + "--b--\n";
    }
    default:
      return header(text, "multipart/alternative; boundary=b") + "\n" + alternative + "--b--\n";
  }
}

struct MessageFile {
  std::string path;
  std::int64_t start;  // of the message, behind the count line
};

/// A folder of messages as .emlx files, gone with the program.
class Messages {
 public:
  Messages() {
    Text text;
    fs::create_directories(_folder);
    for (std::size_t i = 0; i < 1000; ++i) {
      const std::string bytes = message(text, i);
      const fs::path file = _folder / (std::to_string(i) + ".emlx");
      std::ofstream(file) << bytes.size() << "\n"
                          << bytes << "<plist version=\"1.0\"><dict/></plist>";
      files.push_back(
          {file.string(), static_cast<std::int64_t>(std::to_string(bytes.size()).size()) + 1});
    }
  }
  ~Messages() { fs::remove_all(_folder); }

  std::vector<MessageFile> files;

 private:
  const fs::path _folder =
      fs::temp_directory_path() / ("mail_benchmark-" + std::to_string(::getpid()));
};

const std::vector<MessageFile>& messages() {
  static const Messages all;
  return all.files;
}

void importer(benchmark::State& state) {
  std::vector<Ref<NSURL>> urls;
  for (const MessageFile& file : messages())
    urls.push_back(NSURL::fileURLWithFileSystemRepresentation(file.path, false));
  for (auto _ : state)
    for (NSURL* url : urls) {
      auto attributes = NSMutableDictionary::dictionary();
      importMessage(url, nullptr, attributes, nullptr);
      benchmark::DoNotOptimize(attributes);
    }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * urls.size()));
}

void decodeText(GMimeObject*, GMimeObject* part, gpointer length) {
  if (!GMIME_IS_TEXT_PART(part)) return;
  char* text = g_mime_text_part_get_text(GMIME_TEXT_PART(part));
  if (text) *static_cast<std::size_t*>(length) += std::char_traits<char>::length(text);
  g_free(text);
}

void library(benchmark::State& state) {
  g_mime_init();
  for (auto _ : state)
    for (const MessageFile& file : messages()) {
      GMimeStream* stream = g_mime_stream_fs_open(file.path.c_str(), O_RDONLY, 0, nullptr);
      g_mime_stream_seek(stream, file.start, GMIME_STREAM_SEEK_SET);
      GMimeParser* parser = g_mime_parser_new_with_stream(stream);
      GMimeMessage* message = g_mime_parser_construct_message(parser, nullptr);
      std::size_t length = 0;
      g_mime_message_foreach(message, decodeText, &length);
      benchmark::DoNotOptimize(length);
      g_object_unref(message);
      g_object_unref(parser);
      g_object_unref(stream);
    }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * messages().size()));
}

BENCHMARK(importer)->Unit(benchmark::kMillisecond);
BENCHMARK(library)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kbx
