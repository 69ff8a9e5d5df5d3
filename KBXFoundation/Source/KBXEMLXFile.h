// KBXEMLXFile: a message in the mail client's ".emlx" layout, and the import of an ".eml" file.
#pragma once

#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSObject.h"

namespace kbx {

class NSError;
class NSURL;

/// A message and its properties, as they go into an ".emlx" file. Immutable; may be shared between
/// threads.
///
/// The file is the number of message bytes in decimal and a line feed, the message bytes, and the
/// properties as an XML property list, with nothing in between.
class KBXEMLXFile final : public NSObject {
  KBX_OBJECT(KBXEMLXFile, NSObject)
 public:
  /// A file of these bytes and properties. (initWithMessageData:properties:)
  ///
  /// messageData  required; when missing, raises "Precondition Failed: messageData"
  /// properties   required; when missing, raises "Precondition Failed: properties"
  ///
  /// Keeps immutable copies of both.
  static Ref<KBXEMLXFile> initWithMessageData(NSData* messageData, NSDictionary* properties);

  /// A file of the message in an ".eml" file, every line break made a line feed, and no properties;
  /// absent when it cannot be read. (initWithEMLURL:error:)
  ///
  /// A read error is passed up as the platform gave it, without a frame.
  static Ref<KBXEMLXFile> initWithEMLURL(NSURL* emlURL, Ref<NSError>* error);

  /// Whether the file was written. (writeToURL:error:)
  ///
  /// emlxURL  required; when missing, raises "Precondition Failed: emlxURL". What is there is
  ///          replaced, in place; properties that cannot be serialised leave it untouched.
  ///
  /// A serialiser's error gets a frame, a write error is passed up as the platform gave it.
  bool writeToURL(NSURL* emlxURL, Ref<NSError>* error);

  NSData* messageData() const noexcept { return _messageData; }
  NSDictionary* properties() const noexcept { return _properties; }

  /// Whether the code runs inside the metadata server's sandbox, as every process on macOS 10.8 and
  /// later is taken to do. (isInSpotlightSandbox)
  static bool isInSpotlightSandbox();

  /// Whether the system's mail importer must not be loaded in this process: inside the sandbox, and
  /// in a process whose name begins with "Curio". (shouldDisableMailImporter)
  static bool shouldDisableMailImporter();

  /// The searchable attributes of an ".eml" file; absent when that fails.
  /// (metadataForEMLURL:forceSpotlight:error:)
  ///
  /// forceSpotlight  whether the mail importer is used even where it should not be loaded
  ///
  /// Without it the answer is the raw text of the file alone, "" for an unreadable one, and never
  /// fails. With it a hidden ".emlx" file lies beside the message while the mail importer works;
  /// the folder must be writable. Failures are told to the classic log as well; an exception of
  /// the mail importer counts as one, any other C++ exception passes through. Any number of calls
  /// may run at once, also for the same file.
  static Ref<NSDictionary> metadataForEMLURL(NSURL* emlURL, bool forceSpotlight,
                                             Ref<NSError>* error);

  /// What the system's mail importer finds in an ".emlx" file; absent when it fails or cannot be
  /// loaded, which leaves no error. (metadataForEMLXURL:error:)
  static Ref<NSDictionary> metadataForEMLXURL(NSURL* emlxURL, Ref<NSError>* error);

 private:
  KBXEMLXFile(Ref<NSData> messageData, Ref<NSDictionary> properties)
      : _messageData(std::move(messageData)), _properties(std::move(properties)) {}

  const Ref<NSData> _messageData;
  const Ref<NSDictionary> _properties;
};

}  // namespace kbx
