#include "KBXSpotlightImporter.h"

#include "KBXLog.h"
#include "NSError+KBX.h"
#include "NSProcessInfo+KBX.h"
#include "NSString+KBXHTML.h"
#include "platform/files/NSURL.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNumber.h"
#include "platform/plugins/Bridge.h"
#include "platform/plugins/MDImporter.h"
#include "platform/text/StringEncoding.h"

namespace kbx {

KBX_CLASS(KBXSpotlightImporter)

namespace {

constexpr const char* kHosting = "-[KBXSpotlightImporter metadataForURL:contentType:error:]";

/// An interface of an instance, or none. Releases it when it goes, also when something raises.
template <class Table>
class Interface {
 public:
  explicit Interface(void* interface = nullptr) : _interface(static_cast<Table**>(interface)) {}
  ~Interface() { reset(nullptr); }
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;

  explicit operator bool() const { return _interface; }
  Table** get() const { return _interface; }
  const Table* operator->() const { return *_interface; }
  /// Releases what it has and takes over a reference.
  void reset(void* interface) {
    if (auto* old = std::exchange(_interface, static_cast<Table**>(interface)))
      (*old)->Release(old);
  }
  /// Asks an instance for an interface in the place of this one.
  void query(const Interface<IUnknownVTbl>& instance, CFUUIDRef identifier) {
    LPVOID found = nullptr;
    instance->QueryInterface(instance.get(), CFUUIDGetUUIDBytes(identifier), &found);
    reset(found);
  }

 private:
  Table** _interface;
};

struct Importer {
  Interface<MDImporterURLInterfaceStruct> url;  // before the other, so that it is released after it
  Interface<MDImporterInterfaceStruct> legacy;

  /// Fills in what the instances of a factory offer. False when there is no instance.
  bool query(CFUUIDRef factory) {
    Interface<IUnknownVTbl> instance(
        CFPlugInInstanceCreate(kCFAllocatorDefault, factory, kMDImporterTypeID));
    if (!instance) return false;
    legacy.query(instance, kMDImporterInterfaceID);
    url.query(instance, kMDImporterURLInterfaceID);
    return true;
  }

  /// Calls one import function, whose answer says nothing that the attributes do not. False when
  /// there is none.
  bool import(NSMutableDictionary* attributes, NSString* contentType, NSURL* file) {
    if (url)
      url->ImporterImportURLData(url.get(), toCF(attributes), toCF(contentType), toCF(file));
    else if (legacy)
      legacy->ImporterImportData(legacy.get(), toCF(attributes), toCF(contentType),
                                 toCF(file ? file->path() : nullptr));
    return url || legacy;
  }
};

/// Fills in the interfaces of the first factory that offers any; none offering is no failure.
bool findInterfaces(PlugIn* plugIn, Importer& importer, Ref<NSError>* error) {
  Ref<NSArray> factories =
      adoptCF(CFPlugInFindFactoriesForPlugInTypeInPlugIn(kMDImporterTypeID, toCF(plugIn)));
  KBX_REQUIRE(factories, "factories", (Frame{kHosting, 33}), error);
  for (const auto& factory : *factories) {
    const bool iunknown = importer.query(toCF(cast<NSUUID>(factory)));
    KBX_REQUIRE(iunknown, "iunknown", (Frame{kHosting, 40}), error);
    if (importer.url || importer.legacy) break;
  }
  return true;
}

/// Whether what may be text has a length. Long text that is kept in UTF-8 is not converted for it.
bool hasLength(NSObject* value) {
  if (auto* string = cast<NSString>(value)) {
    const auto bytes = string->keptUTF8();
    return bytes ? !bytes->empty() : string->length() > 0;
  }
  if (auto* data = cast<NSData>(value)) return data->length() > 0;
  raiseUnrecognizedSelector(value, "length");
}

/// The HTML body among the attributes, as text or else as bytes; absent when there is none.
Ref<NSData> htmlBody(NSDictionary* attributes) {
  if (NSObject* html = attributes->objectForKey(fromCF(kMDItemHTMLContent))) {
    auto* const string = cast<NSString>(html);
    if (!string) raiseUnrecognizedSelector(html, "dataUsingEncoding:");
    if (auto bytes = string->dataUsingEncoding(NSUTF8StringEncoding)) return bytes;
  }
  NSObject* const bytes = attributes->objectForKey("kMDItemHTMLContentData"_ns);
  if (bytes && !cast<NSData>(bytes)) raiseUnrecognizedSelector(bytes, "length");
  return cast<NSData>(bytes);
}

}  // namespace

KBXSpotlightImporter::KBXSpotlightImporter(NSURL* importerURL) : _importerURL(importerURL) {}
KBXSpotlightImporter::~KBXSpotlightImporter() = default;

Ref<KBXSpotlightImporter> KBXSpotlightImporter::initWithImporterURL(NSURL* importerURL) {
  auto importer = Ref<KBXSpotlightImporter>::adopt(new KBXSpotlightImporter(importerURL));
  importer->_plugIn = adoptCF(CFPlugInCreate(kCFAllocatorDefault, toCF(importerURL)));
  return importer->_plugIn ? importer : nullptr;
}

void KBXSpotlightImporter::setImporterURL(NSURL* importerURL) { _importerURL = importerURL; }

Ref<NSDictionary> KBXSpotlightImporter::metadataForURL(NSURL* url, Ref<NSError>* error) {
  if (!url) return nullptr;
  Ref<NSError> failure;
  Ref<NSObject> contentType = url->resourceValueForKey(NSURLTypeIdentifierKey(), &failure);
  if (!contentType && failure) {
    if (error) *error = failure;
    return nullptr;
  }
  return metadataForURL(url, cast<NSString>(contentType), error);
}

Ref<NSDictionary> KBXSpotlightImporter::metadataForURL(NSURL* url, NSString* contentType,
                                                       Ref<NSError>* error) {
  auto attributes = NSMutableDictionary::dictionary();
  {
    Importer importer;
    if (!findInterfaces(_plugIn, importer, error)) return nullptr;
    if (!importer.import(attributes, contentType, url))
      KBX_LOG(LogSite("KBXFoundation/Source/KBXSpotlightImporter", 73, kHosting),
              "No importer interface found: %@"_ns, _importerURL ? _importerURL->path() : nullptr);
  }
  return ensureTextContent(attributes, error);
}

Ref<NSDictionary> KBXSpotlightImporter::ensureTextContent(NSDictionary* attributes,
                                                          Ref<NSError>* error) {
  if (!attributes || hasTextContent(attributes)) return attributes;
  auto copy = attributes->mutableCopy();
  // Older systems' mail importers made the text themselves.
  if (auto html = kbxIsMacOSAtLeast10_11() ? htmlBody(copy) : nullptr) {
    auto text = kbxStringWithHTMLData(html, error);
    if (!text) {
      passOn(error, {"-[KBXSpotlightImporter ensureTextContent:error:]", 114});
      return nullptr;
    }
    copy->setObjectForKey(text, fromCF(kMDItemTextContent));
    copy->setObjectForKey(NSNumber::numberWithBool(true), "KBXTextContentIsSynthesized"_ns);
  }
  if (!hasTextContent(copy)) copy->setObjectForKey(""_ns, fromCF(kMDItemTextContent));
  return copy;
}

bool KBXSpotlightImporter::hasTextContent(NSDictionary* attributes) {
  NSObject* text = attributes ? attributes->objectForKey(fromCF(kMDItemTextContent)) : nullptr;
  return text && hasLength(text);
}

}  // namespace kbx
