// HTML to text, beside parsers that make less of it and programs that make as much. Bodies come
// from html_bodies.py; the letters of the text are compared with every peer in this process first.
#include <benchmark/benchmark.h>
#include <libxml/HTMLparser.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "KBXLogger.h"
#include "NSString+KBXHTML.h"
#include "platform/logging/NSLog.h"
#include "platform/objects/NSNumber.h"

#if defined(HAVE_GUMBO)
#include <gumbo.h>
#endif

namespace kbx {
namespace {

std::string pathOf(const std::string& body) { return HTML_BODIES_DIR "/" + body + ".html"; }

const std::string& bytesOf(const std::string& body) {
  static std::map<std::string, std::string> bodies;
  std::string& bytes = bodies[body];
  if (bytes.empty()) {
    std::ifstream file(pathOf(body), std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
    if (bytes.empty()) std::abort();
  }
  return bytes;
}

/// What is left of a text without white space, in which the peers differ.
std::string lettersOf(std::string_view text) {
  std::string letters;
  for (const char c : text)
    if (static_cast<unsigned char>(c) > ' ') letters += c;
  return letters;
}

void setLogs(bool areOn) {
  auto switches = NSMutableDictionary::dictionary();
  if (areOn) {
    switches->setObjectForKey(NSNumber::numberWithBool(true), KBXHTMLConverterDataLog());
    switches->setObjectForKey(NSNumber::numberWithBool(true), KBXHTMLConverterPrettyLog());
  }
  KBXLogger::setSharedLogger(KBXLogger::initWithDefaultsDictionary(switches));
}

/// A log that nobody reads.
class ForgettingLog final : public ClassicLog {
  void write(NSString* message) override { benchmark::DoNotOptimize(message); }
  ScopedService<ClassicLog> _installed{*this};
};

// ---- Ours ----

std::string here(const std::string& bytes) {
  return kbxUngatedStringWithHTMLData(NSData::dataWithBytes(bytes), nullptr)->lossyUTF8();
}

void converter(benchmark::State& state, const std::string& body) {
  setLogs(false);
  auto html = NSData::dataWithBytes(bytesOf(body));
  for (auto _ : state) benchmark::DoNotOptimize(kbxUngatedStringWithHTMLData(html, nullptr));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(html->length()));
}

void converterLogging(benchmark::State& state, const std::string& body) {
  setLogs(true);
  ForgettingLog log;
  auto html = NSData::dataWithBytes(bytesOf(body));
  for (auto _ : state) benchmark::DoNotOptimize(kbxUngatedStringWithHTMLData(html, nullptr));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(html->length()));
  setLogs(false);
}

/// By several threads through the semaphore.
void converterGated(benchmark::State& state, const std::string& body) {
  if (state.thread_index() == 0) setLogs(false);
  auto html = NSData::dataWithBytes(bytesOf(body));
  for (auto _ : state) benchmark::DoNotOptimize(kbxStringWithHTMLData(html, nullptr));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(html->length()));
}

// ---- A library's parser of events ----

struct Events {
  std::string text;
  int hiddenDepth = 0;
};

bool isHidden(const xmlChar* name) {
  const std::string_view text = reinterpret_cast<const char*>(name);
  return text == "head" || text == "script" || text == "style";
}

std::string libxml2(const std::string& bytes) {
  Events events;
  htmlSAXHandler handler{};
  handler.startElement = [](void* context, const xmlChar* name, const xmlChar**) {
    static_cast<Events*>(context)->hiddenDepth += isHidden(name);
  };
  handler.endElement = [](void* context, const xmlChar* name) {
    static_cast<Events*>(context)->hiddenDepth -= isHidden(name);
  };
  handler.characters = [](void* context, const xmlChar* text, int length) {
    auto* const seen = static_cast<Events*>(context);
    if (seen->hiddenDepth == 0)
      seen->text.append(reinterpret_cast<const char*>(text), static_cast<std::size_t>(length));
  };
  handler.ignorableWhitespace = handler.characters;
  htmlParserCtxtPtr const parser =
      htmlCreatePushParserCtxt(&handler, &events, nullptr, 0, nullptr, XML_CHAR_ENCODING_UTF8);
  htmlParseChunk(parser, bytes.data(), static_cast<int>(bytes.size()), 1);
  htmlFreeParserCtxt(parser);
  return events.text;
}

// ---- A library's tree ----

#if defined(HAVE_GUMBO)
void append(const GumboNode* node, std::string& text) {
  if (node->type == GUMBO_NODE_TEXT || node->type == GUMBO_NODE_WHITESPACE)
    text += node->v.text.text;
  if (node->type != GUMBO_NODE_ELEMENT) return;
  const GumboTag tag = node->v.element.tag;
  if (tag == GUMBO_TAG_HEAD || tag == GUMBO_TAG_SCRIPT || tag == GUMBO_TAG_STYLE) return;
  for (unsigned i = 0; i < node->v.element.children.length; ++i)
    append(static_cast<const GumboNode*>(node->v.element.children.data[i]), text);
}

std::string gumbo(const std::string& bytes) {
  GumboOutput* const output =
      gumbo_parse_with_options(&kGumboDefaultOptions, bytes.data(), bytes.size());
  std::string text;
  append(output->root, text);
  gumbo_destroy_output(&kGumboDefaultOptions, output);
  return text;
}
#endif

template <std::string (*convert)(const std::string&)>
void peer(benchmark::State& state, const std::string& body) {
  setLogs(false);
  const std::string& bytes = bytesOf(body);
  if (lettersOf(convert(bytes)) != lettersOf(here(bytes))) state.SetLabel("finds another text");
  for (auto _ : state) benchmark::DoNotOptimize(convert(bytes));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

// ---- Whole programs ----

void program(benchmark::State& state, const std::string& body, const std::string& command) {
  const std::string line = command + " '" + pathOf(body) + "' >/dev/null 2>&1";
  for (auto _ : state)
    if (std::system(line.c_str()) != 0) state.SkipWithError("not installed");
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytesOf(body).size()));
}

// ---- Memory ----

/// A line of what the system says about this process, in bytes.
double bytesInStatus(std::string_view name) {
  std::ifstream file("/proc/self/status");
  for (std::string line; std::getline(file, line);)
    if (line.starts_with(name)) return 1024.0 * std::strtod(line.c_str() + name.size(), nullptr);
  return 0;
}

/// What a conversion takes at most, in a process that has forgotten its peak so far.
double peakOf(NSData* html) {
  std::ofstream("/proc/self/clear_refs") << "5";
  const double before = bytesInStatus("VmRSS:");
  kbxUngatedStringWithHTMLData(html, nullptr);
  return bytesInStatus("VmHWM:") - before;
}

/// The most memory that a conversion of 50 MB takes beside its input, in lengths of the input.
void memory(benchmark::State& state, const std::string& body) {
  setLogs(false);
  std::string bytes;
  while (bytes.size() < 50'000'000) bytes += bytesOf(body);
  auto html = NSData::dataWithBytes(bytes);
  for (auto _ : state) {
    int ends[2];
    if (pipe(ends) != 0) std::abort();
    const pid_t child = fork();
    if (child == 0) {
      const double peak = peakOf(html);
      _exit(write(ends[1], &peak, sizeof peak) == sizeof peak ? 0 : 1);
    }
    double peak = 0;
    if (read(ends[0], &peak, sizeof peak) != sizeof peak) std::abort();
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    state.counters["extra"] = peak / static_cast<double>(bytes.size());
  }
}

void add(const std::string& name, void (*run)(benchmark::State&, const std::string&),
         const std::string& body) {
  benchmark::RegisterBenchmark((name + "/" + body).c_str(), run, body);
}

[[maybe_unused]] const bool isRegistered = [] {
  for (const std::string style : {"newsletter-", "processor-"}) {
    for (const char* size : {"2K", "20K", "200K", "2M"}) {
      const std::string body = style + size;
      add("converter", converter, body);
      add("converterLogging", converterLogging, body);
      add("libxml2", peer<libxml2>, body);
#if defined(HAVE_GUMBO)
      add("gumbo", peer<gumbo>, body);
#endif
    }
    const std::string body = style + "2M";
    for (const std::string command :
         {"w3m -dump -T text/html", "lynx -dump -force_html", "html2text -utf8"})
      benchmark::RegisterBenchmark((command.substr(0, command.find(' ')) + "/" + body).c_str(),
                                   program, body, command)
          ->UseRealTime();
    benchmark::RegisterBenchmark(("converterGated/" + style + "200K").c_str(), converterGated,
                                 style + "200K")
        ->ThreadRange(1, 8)
        ->UseRealTime();
    benchmark::RegisterBenchmark(("memory/" + style + "2M").c_str(), memory, body)->Iterations(1);
  }
  return true;
}();

}  // namespace
}  // namespace kbx
