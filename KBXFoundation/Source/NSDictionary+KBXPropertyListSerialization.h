// NSDictionary(KBXPropertyListSerialization): dictionaries in property-list files.
#pragma once

#include "platform/files/NSURL.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// The dictionary in a property-list file. (kbxReadURL:error:)
///
/// receiver  the class that is asked: the mutable dictionary class and its subclasses give mutable
///           containers throughout, others immutable ones
///
/// Fails as the reading of any property list does, and with error 902 when the file holds another
/// kind of list; the expected class is then the dictionary class, whichever was asked.
Ref<NSDictionary> kbxReadURL(NSClass* receiver, NSURL* url, Ref<NSError>* error);

/// Stores the dictionary in a file, in the XML format. (kbxWriteXMLToURL:error:)
///
/// Fails as the writing of any property list does. False for an absent dictionary.
bool kbxWriteXMLToURL(NSDictionary* dictionary, NSURL* url, Ref<NSError>* error);

/// The same in the binary format. (kbxWriteBinaryToURL:error:)
bool kbxWriteBinaryToURL(NSDictionary* dictionary, NSURL* url, Ref<NSError>* error);

}  // namespace kbx
