// XSLTTransform: any stylesheet, by the XSLT library.
#pragma once

#include "platform/markup/XMLTree.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// NSXMLDocument::objectByApplyingXSLTString() for a tree. Every access to files and the network is
/// denied to the stylesheet.
KBX_PLATFORM Ref<NSObject> applyXSLT(const XMLTree& document, NSString* xslt,
                                     NSDictionary* arguments, Ref<NSError>* error);

}  // namespace kbx
