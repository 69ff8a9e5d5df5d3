// Messages of strangers on the whole road, in this process: host, plug-in, .emlx, mail importer.
// Every message has an answer with a text, and the folders on the way are left as they were.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include "host/import/ImportLog.h"
#include "host/import/ImporterChoice.h"
#include "host/import/ScratchFolder.h"
#include "host/import/Staging.h"
#include "platform/objects/NSString.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

void require(bool condition) {
  if (!condition) std::abort();
}

std::size_t entriesOf(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

/// What is the same for all messages.
struct Road {
  ImportLog log{nullptr};
  ScopedService<ClassicLog> installed{log};
  ScratchFolder folder{ScratchFolder::Place::Memory};
  Staging staging;
  ImporterChoice importers{installedImporters(), "", {true, &staging}};
  std::string path = folder.path() + "/message.eml";
};

Ref<NSDictionary> import(Road& road, std::string_view bytes) {
  std::ofstream(road.path, std::ios::binary | std::ios::trunc)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  auto file = NSURL::fileURLWithFileSystemRepresentation(road.path, false);
  Ref<NSError> error;
  return road.importers.attributesOfFile(file, nullptr, &error);
}

void checkAttributes(NSDictionary* attributes) {
  require(attributes);
  auto* text = cast<NSString>(attributes->objectForKey(fromCF(kMDItemTextContent)));
  require(text && text->UTF8String().has_value());
  const bool isMade = attributes->objectForKey("KBXTextContentIsSynthesized"_ns);
  require(!isMade || attributes->objectForKey(fromCF(kMDItemHTMLContent)));
  require(!attributes->objectForKey("FoxTrot"_ns));
}

void check(std::string_view bytes) {
  static Road road;
  checkAttributes(import(road, bytes));
  std::ifstream file(road.path, std::ios::binary);
  require(std::string(std::istreambuf_iterator<char>(file), {}) == bytes);
  require(entriesOf(road.folder.path()) == 1);
  require(entriesOf(road.staging.folderForSize(bytes.size()).path()) == 0);
}

}  // namespace
}  // namespace kbx

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  kbx::check({reinterpret_cast<const char*>(bytes), size});
  return 0;
}
