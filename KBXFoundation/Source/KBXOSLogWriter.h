// KBXOSLogWriter: the writer of the unified log, with a handle for each area.
#pragma once

#include <optional>
#include <string>

#include "KBXLogWriter.h"
#include "platform/logging/UnifiedLog.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSDictionary.h"
#include "platform/text/NSDateFormatter.h"

namespace kbx {

/// Writes to the unified log and one line for each entry to standard error; under the development
/// environment the line alone. Messages that the unified log would cut are written in pieces.
class KBXOSLogWriter : public KBXLogWriter {
  KBX_OBJECT(KBXOSLogWriter, KBXLogWriter)
 public:
  /// A writer with the general handle, whose category is "KBXLogger". (init)
  static Ref<KBXOSLogWriter> init();

  /// "org.ferncase." and the process name, asked for anew each time. (subsystem)
  virtual Ref<NSString> subsystem() const;

  /// The handle of an area, of the category "KBXLogger.AREA", made when the area is first seen and
  /// kept by the writer; the general handle for an absent area. (logForArea:)
  OSLog* logForArea(NSString* area);

  /// The text as UTF-8; where there is none (a lone surrogate), "UTF-8 error: " and the text with
  /// backslash escapes. It ends, like every C string, with its first zero byte. A subclass may have
  /// none at all. (cStringFromString:)
  virtual std::optional<std::string> cStringFromString(NSString* string) const;

  /// Writes one entry, or the pieces of the message with the prefix before each where the whole
  /// has more than 255 bytes. (writePrefix:message:area:)
  void writePrefix(NSString* prefix, NSString* message, NSString* area) override;
  /// The same; without checkLength the entry is written whole, however long it is.
  /// (writePrefix:message:area:checkLength:)
  void writePrefix(NSString* prefix, NSString* message, NSString* area, bool checkLength);

  /// The pieces of each line, in order; line feeds and empty lines vanish. Absent is empty.
  /// (splitMessage:)
  Ref<NSArray> splitMessage(NSString* message) const;
  /// The line in pieces, each closed once it has more than `length` UTF-16 units. No composed
  /// character is cut, so a piece may be longer still. Absent is empty. (splitLine:length:)
  Ref<NSArray> splitLine(NSString* line, std::size_t length) const;

  /// Writes one entry, and "TIME [SUBSYSTEM] TEXT" to standard error. (logCString:area:)
  ///
  /// text  UTF-8, required
  void logCString(const char* text, NSString* area);

  /// Whether the system has the unified log. (isOSLogAvailable)
  static bool isOSLogAvailable();

 protected:
  KBXOSLogWriter();
  ~KBXOSLogWriter() override;

 private:
  // Given back from the last to the first: the general handle goes before those of the areas.
  Ref<NSDateFormatter> _dateFormatter;
  Ref<NSMutableDictionary> _logsByArea;  // area to OSLog; under the dictionary's lock
  Ref<OSLog> _log;
};

}  // namespace kbx
