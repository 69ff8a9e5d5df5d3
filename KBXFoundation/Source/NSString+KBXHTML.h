// NSString(KBXHTML): the plain text of an HTML document.
#pragma once

#include <cstdint>

#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/objects/NSString.h"
#include "platform/xml/NSXMLDocument.h"

namespace kbx {

/// The text that a reader sees of an HTML document; a unit of the semaphore
/// "KBXStringWithHTMLSemaphore" (8, unless the user default of that name says otherwise) is held
/// meanwhile. (kbxStringWithHTMLData:error:)
///
/// Results, errors and logs are those of kbxUngatedStringWithHTMLData(); the same error is stored
/// by the same call. Waits without limit for the semaphore. What the conversion raises passes on
/// once the unit is back.
Ref<NSString> kbxStringWithHTMLData(NSData* htmlData, Ref<NSError>* error);

/// The same at once, for a caller that limits itself. (kbxUngatedStringWithHTMLData:error:)
///
/// htmlData  a document in any charset; error 901 for "htmlData" when absent, "" when empty
///
/// No comment, nothing of head and script elements; one blank for each noframes element. Fails with
/// the platform's error and the frames on the way when a document cannot be parsed or transformed,
/// which the platform's own engine never reports. Where the result is "" because nothing was left
/// to put out, *error may hold an error that means nothing: judge by the result.
///
/// The area "KBXHTMLConverterDataLog" logs the bytes, absent ones too; "KBXHTMLConverterPrettyLog"
/// logs both documents on the way. With both off, and no double in the place of the engine, the
/// same text is found on a shorter way. Any thread.
Ref<NSString> kbxUngatedStringWithHTMLData(NSData* htmlData, Ref<NSError>* error);

/// The logger areas of the conversion. Nothing asks for the last one.
inline NSString* KBXHTMLConverterDataLog() { return "KBXHTMLConverterDataLog"_ns; }
inline NSString* KBXHTMLConverterPrettyLog() { return "KBXHTMLConverterPrettyLog"_ns; }
inline NSString* KBXHTMLConverterHashLog() { return "KBXHTMLConverterHashLog"_ns; }

// ---- The steps of the conversion -----------------------------------------------------------
// Each fails with error 901, which names the argument, when a required one is absent.

/// The document in bytes. A failure of the platform gets no frame.
Ref<NSXMLDocument> documentFromDataOptions(NSData* data, std::uint64_t options,
                                           Ref<NSError>* error);
/// The same, tidied.
///
/// isXML  whether well-formed XML is taken as it is; without it only XHTML is
Ref<NSXMLDocument> documentFromData(NSData* data, bool isXML, Ref<NSError>* error);
/// The document in a text, tidied as HTML.
Ref<NSXMLDocument> documentFromString(NSString* string, Ref<NSError>* error);
/// A new document without the comments.
Ref<NSXMLDocument> removeCommentsFromDocument(NSXMLDocument* document, Ref<NSError>* error);

/// Whether the object is a document whose canonical form is empty.
bool isEmptyDocument(NSObject* object);

/// The text of a document in UTF-8, without head and script.
///
/// htmlData  what the document was made of, for the error of a failure
///
/// Where nothing is put out the data is empty, and *error holds an error that means nothing.
Ref<NSData> textDataFromDocument(NSXMLDocument* document, NSData* htmlData, Ref<NSError>* error);
/// The text of UTF-8 bytes.
Ref<NSString> stringFromData(NSData* data, Ref<NSError>* error);

/// Logs a document set out in lines, where the area "KBXHTMLConverterPrettyLog" is on; else nothing
/// is formed.
void logDocument(NSXMLDocument* document, NSString* label);

/// Whether the node is an element of the name "noframes".
bool shouldDeleteNode(NSXMLNode* node);
/// Takes the "noframes" elements out of an element.
void processNode(NSXMLNode* node);
/// The same for a document's root.
void processDocument(NSXMLDocument* document);

}  // namespace kbx
