// ImporterFixture: the bundle as a host or a debugger sees it: instances and exported functions.
#pragma once

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

#include "importer/MetadataImporterPlugin.h"
#include "platform/plugins/Bridge.h"
#include "tests/support/Bundles.h"
#include "tests/support/FakeEnvironment.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/Text.h"

namespace kbx {

inline constexpr const char* kFactoryText = "1843614B-4490-4511-8F2A-F82385D11CD7";
inline constexpr const char* kImporterBundle =
    FERNCASE_SPOTLIGHT_DIR "/FerncaseSpotlightImporter.mdimporter";
inline constexpr const char* kImporterExecutable = FERNCASE_SPOTLIGHT_DIR
    "/FerncaseSpotlightImporter.mdimporter/Contents/Linux/FerncaseSpotlightImporter";

inline void* importerSymbol(const char* name) {
  static void* const bundle = dlopen(kImporterExecutable, RTLD_NOW | RTLD_LOCAL);
  void* symbol = bundle ? dlsym(bundle, name) : nullptr;
  if (!symbol) throw std::runtime_error(std::string("not exported: ") + name);
  return symbol;
}

/// An exported function of the bundle, by its name and with its declared type.
#define IMPORTER_FUNCTION(name) (reinterpret_cast<decltype(&::name)>(::kbx::importerSymbol(#name)))

class ImporterFixture : public testing::Test {
 protected:
  /// An instance made by the factory function itself, with one reference.
  static MetadataImporterPluginType* makeInstance() {
    return static_cast<MetadataImporterPluginType*>(
        IMPORTER_FUNCTION(MetadataImporterPluginFactory)(kCFAllocatorDefault, kMDImporterTypeID));
  }
  static HRESULT query(MetadataImporterPluginType* instance, CFUUIDRef identifier, void** found) {
    return instance->functionTable->QueryInterface(instance, CFUUIDGetUUIDBytes(identifier), found);
  }

  RecordingLog log;
  FakeEnvironment environment{{testSystemRoot()}};
  ScopedService<Environment> installed{environment};
};

}  // namespace kbx
