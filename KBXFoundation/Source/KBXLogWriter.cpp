#include "KBXLogWriter.h"

#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/system/NSProcessInfo.h"
#include "platform/text/Format.h"

namespace kbx {

KBX_CLASS(KBXLogWriter)

namespace {

bool readIsInXcode() {
  Ref<NSDictionary> environment = NSProcessInfo::processInfo()->environment();
  auto* value = cast<NSString>(environment->objectForKey("KBXIsInXcode"_ns));
  return value && value->boolValue();
}

}  // namespace

KBXLogWriter::KBXLogWriter() : _isInXcode(readIsInXcode()) {}
KBXLogWriter::~KBXLogWriter() = default;

Ref<KBXLogWriter> KBXLogWriter::init() { return Ref<KBXLogWriter>::adopt(new KBXLogWriter); }

Ref<NSString> KBXLogWriter::combinePrefix(NSString* prefix, NSString* message) const {
  return stringWithFormat("%@ %@"_ns, prefix, message);
}

void KBXLogWriter::writePrefix(NSString*, NSString*, NSString*) {
  raiseUnrecognizedSelector(this, "writePrefix:message:area:");
}

}  // namespace kbx
