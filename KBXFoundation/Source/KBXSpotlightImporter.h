// KBXSpotlightImporter: the host of another importer bundle.
#pragma once

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSObject.h"
#include "platform/objects/NSString.h"

namespace kbx {

class NSError;
class NSURL;
class PlugIn;

/// A loaded importer bundle. Keeps it loaded while it lives; used by one thread at a time.
class KBXSpotlightImporter final : public NSObject {
  KBX_OBJECT(KBXSpotlightImporter, NSObject)
 public:
  /// A host of the bundle; absent, without a reason, when it cannot be loaded.
  /// (initWithImporterURL:)
  static Ref<KBXSpotlightImporter> initWithImporterURL(NSURL* importerURL);

  /// The bundle's location. (importerURL)
  NSURL* importerURL() const noexcept { return _importerURL; }
  /// Changes what importerURL() answers, not the bundle that is loaded. (setImporterURL:)
  void setImporterURL(NSURL* importerURL);

  /// The attributes of a file of the type that the file system knows for it; absent when that
  /// fails. (metadataForURL:error:)
  ///
  /// The error of a file whose type cannot be asked for is passed up as the platform gave it.
  Ref<NSDictionary> metadataForURL(NSURL* url, Ref<NSError>* error);

  /// The attributes that the bundle finds in a file, with text content in any case; absent when
  /// that fails. (metadataForURL:contentType:error:)
  ///
  /// contentType  a uniform type identifier, passed on to the bundle; may be absent
  ///
  /// The first factory whose instance offers an import function is used, the function for URLs
  /// rather than the one for paths. What it sets is kept, whatever it answers; a bundle without one
  /// finds nothing, which is no error. Fails with error 901 for "factories" while no bundle in the
  /// process serves importers, and for "iunknown" when a factory makes no instance. What the
  /// bundle's code raises passes through.
  Ref<NSDictionary> metadataForURL(NSURL* url, NSString* contentType, Ref<NSError>* error);

  /// The very same attributes when they have text content, else a copy with the text of their HTML
  /// body, or with an empty one. (ensureTextContent:error:)
  ///
  /// The HTML is that of kMDItemHTMLContent, else the bytes of "kMDItemHTMLContentData"; it counts
  /// from macOS 10.11 on, and "KBXTextContentIsSynthesized" is then true. Fails with what the
  /// conversion fails with. On success *error may hold an error that means nothing.
  Ref<NSDictionary> ensureTextContent(NSDictionary* attributes, Ref<NSError>* error);

  /// Whether there is a value for kMDItemTextContent whose length is not zero. (hasTextContent:)
  ///
  /// A value that has no length raises NSInvalidArgumentException.
  bool hasTextContent(NSDictionary* attributes);

 private:
  explicit KBXSpotlightImporter(NSURL* importerURL);
  ~KBXSpotlightImporter() override;

  Ref<PlugIn> _plugIn;  // before the URL, so that it goes after it
  Ref<NSURL> _importerURL;
};

}  // namespace kbx
