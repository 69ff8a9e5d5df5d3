#include "KBXOSLogWriter.h"

#include <cstdio>
#include <cstring>

#include "NSProcessInfo+KBX.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/system/NSProcessInfo.h"
#include "platform/text/ComposedCharacters.h"
#include "platform/text/Format.h"
#include "platform/text/StringEncoding.h"
#include "platform/threads/Synchronized.h"

namespace kbx {

KBX_CLASS(KBXOSLogWriter)

namespace {

constexpr std::size_t kLongestEntryInBytes = 255;
constexpr std::size_t kPieceLengthInUnits = 128;

std::string utf8Or(NSString* text, const char* otherwise) {
  return (text ? text->UTF8String() : std::nullopt).value_or(otherwise);
}

Ref<NSString> escaped(NSString* text) {
  Ref<NSData> bytes = text ? text->dataUsingEncoding(NSNonLossyASCIIStringEncoding, true) : nullptr;
  return NSString::initWithData(bytes, NSUTF8StringEncoding);
}

}  // namespace

KBXOSLogWriter::KBXOSLogWriter() : _logsByArea(NSMutableDictionary::dictionary()) {
  _log = os_log_create(KBXOSLogWriter::subsystem(), "KBXLogger"_ns);
  _dateFormatter = NSDateFormatter::initWithDateFormat("yyyy-MM-dd HH:mm:ss.SSS"_ns);
}

KBXOSLogWriter::~KBXOSLogWriter() = default;

Ref<KBXOSLogWriter> KBXOSLogWriter::init() {
  return Ref<KBXOSLogWriter>::adopt(new KBXOSLogWriter);
}

Ref<NSString> KBXOSLogWriter::subsystem() const {
  return stringWithFormat("org.ferncase.%@"_ns, NSProcessInfo::processInfo()->processName());
}

OSLog* KBXOSLogWriter::logForArea(NSString* area) {
  if (!area) return _log;
  Synchronized lock(_logsByArea);
  if (!_logsByArea->objectForKey(area)) {
    auto log = os_log_create(subsystem(), stringWithFormat("KBXLogger.%@"_ns, area));
    _logsByArea->setObjectForKey(log, area);
  }
  return cast<OSLog>(_logsByArea->objectForKey(area));
}

std::optional<std::string> KBXOSLogWriter::cStringFromString(NSString* string) const {
  auto text = string ? string->UTF8String() : std::nullopt;
  return text ? text : stringWithFormat("UTF-8 error: %@"_ns, escaped(string))->UTF8String();
}

void KBXOSLogWriter::writePrefix(NSString* prefix, NSString* message, NSString* area) {
  writePrefix(prefix, message, area, true);
}

void KBXOSLogWriter::writePrefix(NSString* prefix, NSString* message, NSString* area,
                                 bool checkLength) {
  const auto text = cStringFromString(combinePrefix(prefix, message));
  if (!text) return logCString("Fallback UTF-8 conversion failed.", area);
  if (!checkLength || std::strlen(text->c_str()) <= kLongestEntryInBytes)
    return logCString(text->c_str(), area);
  // The prefix alone may be too long already; a piece is never tested again.
  Ref<NSArray> pieces = splitMessage(message);
  for (const auto& piece : *pieces) writePrefix(prefix, cast<NSString>(piece), area, false);
}

Ref<NSArray> KBXOSLogWriter::splitMessage(NSString* message) const {
  auto pieces = NSMutableArray::array();
  if (!message) return pieces;
  Ref<NSArray> lines = message->componentsSeparatedByString("\n"_ns);
  for (const auto& line : *lines)
    pieces->addObjectsFromArray(splitLine(cast<NSString>(line), kPieceLengthInUnits));
  return pieces;
}

Ref<NSArray> KBXOSLogWriter::splitLine(NSString* line, std::size_t length) const {
  auto pieces = NSMutableArray::array();
  if (!line) return pieces;
  ComposedCharacters characters(line);
  std::size_t start = 0;
  for (std::size_t at = 0; at < line->length(); at = characters.endOfSequenceAt(at)) {
    // Tested before the next character joins, so a piece closes only once it is too long.
    if (at - start <= length) continue;
    pieces->addObject(line->substringWithRange({start, at - start}));
    start = at;
  }
  if (start < line->length()) pieces->addObject(line->substringFromIndex(start));
  return pieces;
}

void KBXOSLogWriter::logCString(const char* text, NSString* area) {
  OSLog* log = logForArea(area);
  if (!_isInXcode) log->writeError(text);
  const std::string time = utf8Or(_dateFormatter->stringFromDate(NSDate::date()), "unknown date");
  const std::string name = utf8Or(subsystem(), "KBXLogger");
  std::fprintf(stderr, "%s [%s] %s\n", time.c_str(), name.c_str(), text);
}

bool KBXOSLogWriter::isOSLogAvailable() {
  // The number of Foundation first: before 10.10 nobody answers the version query.
  return kbxIsMacOSAtLeast10_10() &&
         NSProcessInfo::processInfo()->isOperatingSystemAtLeastVersion({10, 12, 0}) &&
         UnifiedLog::current().isAvailable();
}

}  // namespace kbx
