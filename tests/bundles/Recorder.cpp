// Recorder: an importer with both interfaces that tells in the attributes what its host asked for,
// and logs in an area of its own.
#include <string>

#include "Instance.h"
#include "KBXLog.h"
#include "platform/plugins/Bridge.h"

using namespace kbx;

namespace {

constexpr LogSite kSite("tests/bundles/Recorder", 1, "Recorder");

// Of the one instance that a test makes at a time.
std::string questions;

HRESULT recordQuestion(void* instance, REFIID identifier, LPVOID* interface) {
  CFUUIDRef wanted = CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier);
  const bool isURL = CFEqual(wanted, kMDImporterURLInterfaceID);
  const bool isLegacy = CFEqual(wanted, kMDImporterInterfaceID);
  CFRelease(wanted);
  questions += isURL ? " URL" : isLegacy ? " legacy" : " other";
  if (!isLegacy) return queryInterface(instance, identifier, interface);
  addReference(instance);
  *interface = instance;
  return S_OK;
}

Boolean import(void*, CFMutableDictionaryRef attributes, CFStringRef, CFURLRef) {
  Ref<NSString> asked = stringWithFormat("%s"_ns, questions);
  KBX_LOG_AREA("RecorderArea", kSite, "asked for%@"_ns, asked);
  CFDictionarySetValue(attributes, kMDItemTextContent, toCF(asked.get()));
  return true;
}

}  // namespace

TEST_BUNDLE_EXPORT void* RecorderFactory(CFAllocatorRef, CFUUIDRef) {
  questions.clear();
  KBX_LOG_AREA("RecorderArea", kSite, "made"_ns);
  Instance* instance = makeInstance(
      CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("6A0D4F5B-93C7-4E21-8C1F-0C9E3B1B6D07")),
      import);
  instance->functions.QueryInterface = recordQuestion;
  return instance;
}

TEST_BUNDLE_EXPORT void MetadataImporterSetUpLogging(CFStringRef persistentDomainName) {
  KBXLogger::setUpWithPersistentDomainName(fromCF(persistentDomainName));
}
