// NoInstance: a factory that makes nothing.
#include "Instance.h"

TEST_BUNDLE_EXPORT void* NothingFactory(CFAllocatorRef, CFUUIDRef) { return nullptr; }
