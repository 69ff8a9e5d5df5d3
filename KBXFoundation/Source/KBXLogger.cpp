#include "KBXLogger.h"

#include "Assertions.h"
#include "KBXNSLogWriter.h"
#include "KBXOSLogWriter.h"
#include "platform/objects/NSNumber.h"
#include "platform/preferences/NSUserDefaults.h"
#include "platform/threads/NSThread.h"
#include "platform/threads/Synchronized.h"

namespace kbx {

KBX_CLASS(KBXLogger)

namespace {

// Under the lock of the class; owns a reference. A plain pointer, so that a thread that logs while
// the process ends finds no destroyed object here.
constinit KBXLogger* gSharedLogger = nullptr;

/// Gives the shared logger back before the code around it is unloaded.
struct AtTheEnd {
  ~AtTheEnd() { KBXLogger::setSharedLogger(nullptr); }
};
[[maybe_unused]] const AtTheEnd atTheEnd;

Ref<NSMutableDictionary> withBuiltInValues(NSDictionary* defaults) {
  Ref<NSNumber> no = NSNumber::numberWithBool(false);
  Ref<NSNumber> yes = NSNumber::numberWithBool(true);
  auto values = NSMutableDictionary::dictionary();
  values->setObjectForKey(no, "KBXLoggerIncludeFile"_ns);
  values->setObjectForKey(no, "KBXLoggerIncludeLine"_ns);
  values->setObjectForKey(no, "KBXLoggerIncludeThread"_ns);
  values->setObjectForKey(no, "KBXLoggerIncludeFunction"_ns);
  values->setObjectForKey(yes, "KBXLoggerIncludeArea"_ns);
  values->addEntriesFromDictionary(defaults);
  return values;
}

Ref<KBXLogWriter> makeWriter() {
  if (KBXOSLogWriter::isOSLogAvailable()) return KBXOSLogWriter::init();
  return KBXNSLogWriter::init();
}

Ref<NSString> threadText() {
  Ref<NSThread> thread = NSThread::currentThread();
  if (thread->isMainThread()) return stringWithFormat("<main: \"%@\">"_ns, thread->name());
  return stringWithFormat("<%p: \"%@\">"_ns, static_cast<const void*>(thread.get()),
                          thread->name());
}

/// What "%@" prints of a C string: "(null)" for one that is null or malformed.
Ref<NSString> textOf(const char* utf8) {
  return descriptionOf(NSString::stringWithUTF8String(utf8));
}

}  // namespace

Ref<KBXLogger> KBXLogger::sharedLogger() {
  Synchronized lock(classObject());
  return gSharedLogger ? Ref<KBXLogger>(gSharedLogger) : initDisposableLogger();
}

void KBXLogger::setSharedLogger(KBXLogger* logger) {
  Synchronized lock(classObject());
  const auto before = Ref<KBXLogger>::adopt(gSharedLogger);
  gSharedLogger = Ref<KBXLogger>(logger).leak();
  detail::sharedLoggerNumber.fetch_add(1, std::memory_order_relaxed);
}

void KBXLogger::setUpWithPersistentDomainName(NSString* name) {
  setSharedLogger(initWithPersistentDomainName(name));
}

Ref<KBXLogger> KBXLogger::init() {
  return initWithDefaultsDictionary(
      NSUserDefaults::standardUserDefaults()->dictionaryRepresentation());
}

Ref<KBXLogger> KBXLogger::initWithPersistentDomainName(NSString* name) {
  return initWithDefaultsDictionary(
      NSUserDefaults::standardUserDefaults()->persistentDomainForName(name));
}

Ref<KBXLogger> KBXLogger::initDisposableLogger() {
  return initWithDefaultsDictionary(NSDictionary::dictionaryWithPairs(
      {{"KBXLoggerAllAreas"_ns, NSNumber::numberWithBool(true)}}));
}

Ref<KBXLogger> KBXLogger::initWithDefaultsDictionary(NSDictionary* defaults) {
  return Ref<KBXLogger>::adopt(new KBXLogger(defaults));
}

KBXLogger::KBXLogger(NSDictionary* defaults)
    : _defaultsDictionary(withBuiltInValues(defaults)), _writer(makeWriter()) {}
KBXLogger::~KBXLogger() = default;

bool KBXLogger::isEnabledForArea(NSString* area) const {
  return !area || isOptionEnabled("KBXLoggerAllAreas"_ns) || isOptionEnabled(area);
}

bool KBXLogger::isOptionEnabled(NSString* key) const {
  NSObject* value = _defaultsDictionary->objectForKey(key);
  if (auto* number = cast<NSNumber>(value)) return number->boolValue();
  auto* text = cast<NSString>(value);
  return text && text->boolValue();
}

void KBXLogger::logFileFormat(const char* file, unsigned long line, const char* function,
                              NSString* area, NSString* format, FormatArguments arguments) {
  Ref<NSArray> components = prefixComponents(file, line, function, area);
  Ref<NSString> message = stringWithFormatArguments(format, arguments);
  logPrefix(components->componentsJoinedByString(" "_ns), message, area);
}

void KBXLogger::logFileMessage(const char* file, unsigned long line, const char* function,
                               NSString* area, NSString* message) {
  logFileFormat(file, line, function, area, "%@"_ns, message);
}

void KBXLogger::logPrefix(NSString* prefix, NSString* message, NSString* area) {
  KBX_PARAMETER_ASSERT(
      prefix, "prefix",
      Site("KBXFoundation/Source/KBXLogger", 327, this, "logPrefix:message:area:"));
  _writer->writePrefix(prefix, message, area);
}

Ref<NSArray> KBXLogger::prefixComponents(const char* file, unsigned long line, const char* function,
                                         NSString* area) const {
  auto components = NSMutableArray::array();
  if (NSObject* fixed = _defaultsDictionary->objectForKey("KBXLoggerPrefix"_ns))
    components->addObject(fixed);
  if (area && isOptionEnabled("KBXLoggerIncludeArea"_ns))
    components->addObject(stringWithFormat("[%@]"_ns, area));
  if (isOptionEnabled("KBXLoggerIncludeFile"_ns)) {
    Ref<NSString> name = textOf(file)->lastPathComponent();
    const bool withLine = isOptionEnabled("KBXLoggerIncludeLine"_ns);
    components->addObject(withLine ? stringWithFormat("%@:%lu"_ns, name, line) : name);
  }
  if (isOptionEnabled("KBXLoggerIncludeThread"_ns)) components->addObject(threadText());
  if (isOptionEnabled("KBXLoggerIncludeFunction"_ns)) components->addObject(textOf(function));
  return components;
}

}  // namespace kbx
