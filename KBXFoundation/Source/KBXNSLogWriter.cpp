#include "KBXNSLogWriter.h"

#include "platform/logging/NSLog.h"
#include "platform/objects/NSClass.h"

namespace kbx {

KBX_CLASS(KBXNSLogWriter)

Ref<KBXNSLogWriter> KBXNSLogWriter::init() {
  return Ref<KBXNSLogWriter>::adopt(new KBXNSLogWriter);
}

void KBXNSLogWriter::writePrefix(NSString* prefix, NSString* message, NSString*) {
  NSLog("%@"_ns, combinePrefix(prefix, message));
}

}  // namespace kbx
