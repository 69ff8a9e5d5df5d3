// XMLProcessing: the seam behind reading and transforming documents.
#pragma once

#include <cstdint>

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"
#include "platform/system/Service.h"

namespace kbx {

class NSData;
class NSXMLDocument;

/// Reads and transforms documents. The system's answerer is the platform's own engine; a test's
/// double injects failures. Any thread.
class KBX_PLATFORM XMLProcessing {
 public:
  virtual ~XMLProcessing() = default;

  /// NSXMLDocument::initWithData().
  virtual Ref<NSXMLDocument> documentWithData(NSData* data, std::uint64_t options,
                                              Ref<NSError>* error);
  /// NSXMLDocument::objectByApplyingXSLTString().
  virtual Ref<NSObject> objectByApplyingXSLT(const NSXMLDocument& document, NSString* xslt,
                                             NSDictionary* arguments, Ref<NSError>* error);
  /// Whether its answers are the engine's own, so that what several of them lead to may be found on
  /// a shorter way.
  virtual bool isSystem() const { return false; }

  KBX_SERVICE_INTERFACE(XMLProcessing)
};

}  // namespace kbx
