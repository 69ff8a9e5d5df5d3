#include "KBXFunctions.h"
#include "NSURL+KBXFileBasics.h"

namespace kbx {

Ref<NSURL> kbxParent(NSURL* url) { return url ? url->URLByDeletingLastPathComponent() : nullptr; }

Ref<NSURL> kbxChild(NSURL* url, NSString* name) {
  if (!url) return nullptr;
  KBX_PRECONDITION(name, Site("KBXFoundation/Source/NSURL+KBXFileBasics", 180, url, "kbxChild:"));
  return url->URLByAppendingPathComponent(name);
}

}  // namespace kbx
