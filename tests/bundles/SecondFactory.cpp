// SecondFactory: two factories, of which only the second has instances with an interface.
#include "Instance.h"

namespace {

CFUUIDRef uuid(const char* text) {
  CFStringRef string = CFStringCreateWithCString(kCFAllocatorDefault, text, kCFStringEncodingUTF8);
  CFUUIDRef result = CFUUIDCreateFromString(kCFAllocatorDefault, string);
  CFRelease(string);
  return result;
}

Boolean import(void*, CFMutableDictionaryRef attributes, CFStringRef, CFURLRef) {
  CFDictionarySetValue(attributes, kMDItemTextContent, CFSTR("from the second factory"));
  return true;
}

}  // namespace

TEST_BUNDLE_EXPORT void* FirstFactory(CFAllocatorRef, CFUUIDRef) {
  return makeInstance(uuid("F77BB3FB-2D01-4B6A-9B1F-0C9E3B1B6D01"), nullptr);
}

TEST_BUNDLE_EXPORT void* SecondFactory(CFAllocatorRef, CFUUIDRef) {
  return makeInstance(uuid("0A5E2F6C-7D57-4C35-8F4C-0C9E3B1B6D02"), import);
}
