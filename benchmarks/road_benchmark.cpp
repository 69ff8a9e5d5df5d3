// The whole road of a mailbox: host, plug-in, .emlx, mail importer, attributes; in this process and
// in workers. Beside it, on the same messages, a program on the MIME library that only parses each
// message and decodes its text, and the floor of writing and removing one small file for each.
//
// FERNCASE_ROAD_MESSAGES in the environment is how many messages there are, 10,000 otherwise.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <gmime/gmime.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "host/import/ScratchFolder.h"
#include "host/workers/ImportWorkers.h"
#include "platform/objects/NSString.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "tests/generators/MailMix.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMessages = 10000;
constexpr std::string_view kSmallFile = "as many bytes as nobody counts\n";

std::size_t messageCount() {
  const char* wanted = std::getenv("FERNCASE_ROAD_MESSAGES");
  return wanted ? std::strtoul(wanted, nullptr, 10) : kMessages;
}

/// A generated mailbox on disk, gone with the program.
class Mailbox {
 public:
  Mailbox() {
    const MailMix mix(1, messageCount());
    for (std::size_t i = 0; i < mix.count(); ++i) {
      const fs::path file = fs::path(_folder.path()) / MailMix::fileName(i);
      fs::create_directories(file.parent_path());
      std::ofstream(file, std::ios::binary) << mix.message(i);
      paths.push_back(file.string());
    }
  }

  std::vector<std::string> paths;

 private:
  ScratchFolder _folder;
};

const std::vector<std::string>& mailbox() {
  static const Mailbox all;
  return all.paths;
}

void countMessages(benchmark::State& state) {
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * mailbox().size()));
}

/// Gives the mailbox to a run of imports, once.
Imports::Next eachMessage() {
  return [at = std::size_t{0}]() mutable -> std::optional<Input> {
    if (at == mailbox().size()) return std::nullopt;
    return Input{mailbox()[at++], nullptr};
  };
}

/// Ends the program unless every message is found by its mark: nothing is faster than no answer.
void checkAnswers(ImportWorkers& imports) {
  std::size_t index = 0;
  imports.run(eachMessage(), [&](const Input&, NSDictionary* attributes, NSError*) {
    NSObject* body = attributes ? attributes->objectForKey(fromCF(kMDItemTextContent)) : nullptr;
    auto* text = cast<NSString>(body);
    if (!text || text->lossyUTF8().find(MailMix::mark(index++)) == std::string::npos) std::abort();
  });
}

void wholeRoad(benchmark::State& state, bool isIsolated, unsigned workers) {
  ImportSettings settings;
  settings.isIsolated = isIsolated;
  settings.workers = workers;
  settings.inputs = mailbox();
  ImportWorkers imports(settings);
  std::string path, reason;
  if (!imports.load(&path, &reason)) std::abort();
  checkAnswers(imports);
  for (auto _ : state)
    imports.run(eachMessage(), [](const Input&, NSDictionary* attributes, NSError*) {
      benchmark::DoNotOptimize(attributes);
    });
  countMessages(state);
}

void decodeText(GMimeObject*, GMimeObject* part, gpointer length) {
  if (!GMIME_IS_TEXT_PART(part)) return;
  char* text = g_mime_text_part_get_text(GMIME_TEXT_PART(part));
  if (text) *static_cast<std::size_t*>(length) += std::char_traits<char>::length(text);
  g_free(text);
}

void mimeLibraryAlone(benchmark::State& state) {
  g_mime_init();
  mailbox();
  for (auto _ : state)
    for (const std::string& path : mailbox()) {
      GMimeStream* stream = g_mime_stream_fs_open(path.c_str(), O_RDONLY, 0, nullptr);
      GMimeParser* parser = g_mime_parser_new_with_stream(stream);
      GMimeMessage* message = g_mime_parser_construct_message(parser, nullptr);
      std::size_t length = 0;
      if (message) {
        g_mime_message_foreach(message, decodeText, &length);
        g_object_unref(message);
      }
      benchmark::DoNotOptimize(length);
      g_object_unref(parser);
      g_object_unref(stream);
    }
  countMessages(state);
}

void oneSmallFileEach(benchmark::State& state) {
  const ScratchFolder folder(ScratchFolder::Place::Memory);
  const std::size_t count = mailbox().size();
  for (auto _ : state)
    for (std::size_t i = 0; i < count; ++i) {
      const std::string path = folder.path() + "/" + std::to_string(i);
      const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
      if (::write(file, kSmallFile.data(), kSmallFile.size()) < 0) std::abort();
      ::close(file);
      ::unlink(path.c_str());
    }
  countMessages(state);
}

template <class... More>
void measure(const char* name, void (*run)(benchmark::State&, More...), More... more) {
  benchmark::RegisterBenchmark(name, run, more...)
      ->Unit(benchmark::kMillisecond)
      ->UseRealTime()  // processes of their own take none of this one's
      ->Iterations(1)
      ->Repetitions(5);
}

[[maybe_unused]] const bool isRegistered = [] {
  measure("wholeRoad/oneProcess", wholeRoad, false, 1u);
  measure("wholeRoad/oneWorker", wholeRoad, true, 1u);
  measure("wholeRoad/twoWorkers", wholeRoad, true, 2u);
  measure("mimeLibraryAlone", mimeLibraryAlone);
  measure("oneSmallFileEach", oneSmallFileEach);
  return true;
}();

}  // namespace
}  // namespace kbx
