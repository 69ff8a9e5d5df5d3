// generate_mail: writes messages to test and to measure with. Everything is made here, from a seed.
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tests/generators/HardMessages.h"
#include "tests/generators/MailMix.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kHelp =
    "usage: generate_mail mix DIR [--count N] [--seed N]\n"
    "       generate_mail hard DIR [--scale X] [NAME...]\n"
    "       generate_mail list\n"
    "\n"
    "mix   writes a mailbox, 10,000 messages of about 32 KB unless N is given\n"
    "hard  writes the hard messages NAME.eml, or those that are no trouble to keep\n"
    "list  names the hard messages, the attribute that has the planted word, what is hard\n";

struct WrongUsage : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The command line: words and options with values.
class Arguments {
 public:
  Arguments(int count, char** texts) : _texts(texts + 1, texts + count) {}

  /// Takes an option with its number out.
  template <class Number>
  Number number(std::string_view name, Number otherwise) {
    for (std::size_t i = 0; i + 1 < _texts.size(); ++i) {
      if (_texts[i] != name) continue;
      const std::string& text = _texts[i + 1];
      const auto [end, failure] =
          std::from_chars(text.data(), text.data() + text.size(), otherwise);
      if (failure != std::errc() || *end || !(otherwise > 0))
        throw WrongUsage(std::string(name) + " needs a number above 0");
      _texts.erase(_texts.begin() + static_cast<std::ptrdiff_t>(i),
                   _texts.begin() + static_cast<std::ptrdiff_t>(i + 2));
      return otherwise;
    }
    return otherwise;
  }
  /// Takes the first of the words out.
  std::string word(std::string_view what) {
    if (_texts.empty() || _texts.front().starts_with("--"))
      throw WrongUsage("needs " + std::string(what));
    std::string word = std::move(_texts.front());
    _texts.erase(_texts.begin());
    return word;
  }
  const std::vector<std::string>& rest() const { return _texts; }

 private:
  std::vector<std::string> _texts;
};

/// A new file; raises when it cannot be written whole.
class NewFile {
 public:
  explicit NewFile(const fs::path& path) : _path(path) {
    fs::create_directories(path.parent_path());
    _file.open(path, std::ios::binary | std::ios::trunc);
  }
  void write(std::string_view bytes) {
    _file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
  void close() {
    _file.close();
    if (!_file) throw std::runtime_error("cannot write " + _path.string());
  }

 private:
  fs::path _path;
  std::ofstream _file;
};

void writeMix(Arguments& arguments) {
  const auto count = arguments.number<std::size_t>("--count", 10000);
  const auto seed = arguments.number<std::uint64_t>("--seed", 1);
  const fs::path folder = arguments.word("a folder");
  const MailMix mix(seed, count);
  for (std::size_t i = 0; i < count; ++i) {
    NewFile file(folder / MailMix::fileName(i));
    file.write(mix.message(i));
    file.close();
  }
}

void writeHard(Arguments& arguments) {
  const auto scale = arguments.number<double>("--scale", 1);
  const fs::path folder = arguments.word("a folder");
  std::vector<const HardMessage*> wanted;
  for (const std::string& name : arguments.rest()) {
    wanted.push_back(hardMessageNamed(name));
    if (!wanted.back()) throw WrongUsage("no hard message is called " + name);
  }
  if (wanted.empty())
    for (const HardMessage& message : hardMessages())
      if (!message.isOnDemand) wanted.push_back(&message);
  for (const HardMessage* message : wanted) {
    NewFile file(folder / (std::string(message->name) + ".eml"));
    message->write([&](std::string_view bytes) { file.write(bytes); }, scale);
    file.close();
  }
}

void listHard() {
  for (const HardMessage& message : hardMessages())
    std::printf("%-17s %-31s %s\n", std::string(message.name).c_str(),
                std::string(message.attribute).c_str(), std::string(message.summary).c_str());
}

void run(Arguments arguments) {
  const std::string what = arguments.word("mix, hard or list");
  if (what == "mix") return writeMix(arguments);
  if (what == "hard") return writeHard(arguments);
  if (what == "list") return listHard();
  throw WrongUsage("knows mix, hard and list, not " + what);
}

}  // namespace
}  // namespace kbx

int main(int count, char** texts) {
  try {
    kbx::run(kbx::Arguments(count, texts));
    return EXIT_SUCCESS;
  } catch (const kbx::WrongUsage& wrong) {
    std::fprintf(stderr, "generate_mail %s\n\n%s", wrong.what(), std::string(kbx::kHelp).c_str());
    return 2;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "generate_mail: %s\n", failure.what());
    return EXIT_FAILURE;
  }
}
