// Cards: a metadata importer for address cards.
#include <string_view>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"

using namespace kbx;

namespace {

// ---- What a card says -----------------------------------------------------------------------

/// Takes the first line off the text, without its end.
std::string_view takeLine(std::string_view& text) {
  const std::size_t end = text.find('\n');
  std::string_view line = text.substr(0, end);
  text.remove_prefix(end == text.npos ? text.size() : end + 1);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

/// Adds what one file holds. Whatever is in it, all that can come of it is a wrong text: it was
/// written by a stranger.
void addCard(std::string_view card, NSMutableDictionary* attributes) {
  auto addresses = NSMutableArray::array();
  for (std::string_view rest = card; !rest.empty();) {
    const std::string_view line = takeLine(rest);  // such as "EMAIL;TYPE=work:ada@example.org"
    const std::size_t colon = line.find(':');
    if (colon == line.npos) continue;
    const std::string_view name = line.substr(0, line.find_first_of(":;"));
    auto value = NSString::stringWithLossyUTF8(line.substr(colon + 1));
    if (name == "FN") attributes->setObjectForKey(value, "kMDItemDisplayName"_ns);
    if (name == "EMAIL") addresses->addObject(value);
  }
  if (addresses->count() > 0) attributes->setObjectForKey(addresses, "kMDItemEmailAddresses"_ns);
  attributes->setObjectForKey(NSString::stringWithLossyUTF8(card), fromCF(kMDItemTextContent));
}

/// The import function. Answers whether it went well; a host may show what it writes to the log.
Boolean importURL(void*, CFMutableDictionaryRef attributes, CFStringRef, CFURLRef url) {
  auto card = NSData::dataWithContentsOfURL(fromCF(url), NSDataReadingNone, nullptr);
  if (!card) return false;
  addCard(card->view(), fromCF(attributes));
  return true;
}

// ---- The instance ---------------------------------------------------------------------------

/// Its address is the interface, because the pointer to the function table comes first.
struct Instance {
  const MDImporterURLInterfaceStruct* table;
  CFUUIDRef factory;
  ULONG count;
};

Instance* instanceOf(void* interface) { return static_cast<Instance*>(interface); }

ULONG addReference(void* interface) { return ++instanceOf(interface)->count; }

ULONG release(void* interface) {
  Instance* instance = instanceOf(interface);
  if (--instance->count > 0) return instance->count;
  CFUUIDRef factory = instance->factory;
  delete instance;
  CFPlugInRemoveInstanceForFactory(factory);
  CFRelease(factory);
  return 0;
}

HRESULT queryInterface(void* interface, REFIID identifier, LPVOID* result) {
  CFUUIDRef wanted = CFUUIDCreateFromUUIDBytes(kCFAllocatorDefault, identifier);
  const bool isOffered =
      CFEqual(wanted, kMDImporterURLInterfaceID) || CFEqual(wanted, IUnknownUUID);
  CFRelease(wanted);
  *result = isOffered ? interface : nullptr;
  if (!isOffered) return E_NOINTERFACE;
  addReference(interface);
  return S_OK;
}

constexpr MDImporterURLInterfaceStruct kFunctions = {nullptr, queryInterface, addReference, release,
                                                     importURL};

}  // namespace

/// What Info.plist names: makes an instance for the importer type, nothing for another.
extern "C" __attribute__((visibility("default"))) void* CardsFactory(CFAllocatorRef,
                                                                     CFUUIDRef type) {
  if (!CFEqual(type, kMDImporterTypeID)) return nullptr;
  CFUUIDRef factory =
      CFUUIDCreateFromString(kCFAllocatorDefault, CFSTR("D7B0A3E4-6C55-4A0E-9C1F-52E0B7C6A111"));
  CFPlugInAddInstanceForFactory(factory);
  return new Instance{&kFunctions, factory, 1};
}
