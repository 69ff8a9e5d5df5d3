#include "host/import/ImporterChoice.h"

#include "host/console/FerncaseErrors.h"

namespace kbx {
namespace {

constexpr std::string_view kMessageType = "com.apple.mail.email";

}  // namespace

ImporterChoice::ImporterChoice(std::vector<InstalledImporter> catalog, std::string fallback,
                               Messages messages)
    : _catalog(std::move(catalog)), _fallback(std::move(fallback)), _messages(messages) {}

const std::string& ImporterChoice::bundleFor(std::string_view type) const {
  for (const InstalledImporter& importer : _catalog)
    if (importer.takes(type)) return importer.path;
  return type == kMessageType ? _fallback : bundleFor(kMessageType);
}

const ImporterChoice::Loaded& ImporterChoice::load(const std::string& path) {
  auto [at, isNew] = _loaded.try_emplace(path);
  Loaded& loaded = at->second;
  if (isNew) {
    auto url = NSURL::fileURLWithFileSystemRepresentation(path, true);
    loaded.bundle = ImporterBundle::load(url, &loaded.reason);
  }
  return loaded;
}

bool ImporterChoice::loadForMessages(std::string* path, std::string* reason) {
  *path = bundleFor(kMessageType);
  const Loaded& loaded = load(*path);
  *reason = loaded.reason;
  return loaded.bundle != nullptr;
}

Ref<NSDictionary> ImporterChoice::attributesOfFile(NSURL* file, NSURL* contents,
                                                   Ref<NSError>* error) {
  const std::string& path = bundleFor(contentTypeOf(file)->lossyUTF8());
  const Loaded& loaded = load(path);
  if (!loaded.bundle) {
    *error = ferncaseError(FerncaseImportFailedError,
                           "The importer " + path + " can’t be loaded: " + loaded.reason);
    return nullptr;
  }
  // What is no message is read where it lies, by an importer that knows no raw text.
  const bool isMessage = path == bundleFor(kMessageType);
  Staging* const staging = contents ? _messages.stagingOfCopies : _messages.staging;
  return FileImporter(*loaded.bundle, isMessage && _messages.usesMailImporter,
                      isMessage ? staging : nullptr)
      .attributesOfFile(file, contents, error);
}

}  // namespace kbx
