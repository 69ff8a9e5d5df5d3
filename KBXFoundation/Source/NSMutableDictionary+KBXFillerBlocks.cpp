#include "NSMutableDictionary+KBXFillerBlocks.h"

#include "KBXDispatch.h"
#include "platform/threads/Synchronized.h"

namespace kbx {

Ref<NSObject> kbxObjectForKeySynchronized(NSMutableDictionary* dictionary, NSObject* key,
                                          bool synchronized) {
  if (!dictionary) return nullptr;
  Synchronized lock(synchronized ? dictionary : nullptr);
  return dictionary->objectForKey(key);
}

void kbxSetObject(NSMutableDictionary* dictionary, NSObject* object, NSObject* key,
                  bool synchronized) {
  if (!dictionary) return;
  Synchronized lock(synchronized ? dictionary : nullptr);
  dictionary->setObjectForKey(object, key);
}

Ref<NSObject> kbxObjectForKeySynchronized(NSMutableDictionary* dictionary, NSObject* key,
                                          bool synchronized, bool mainThread,
                                          const FillerBlock& fillerBlock) {
  if (!dictionary) return nullptr;
  if (auto found = kbxObjectForKeySynchronized(dictionary, key, synchronized)) return found;
  auto made = mainThread ? KBXDispatch::mainThreadReturnObject(fillerBlock) : fillerBlock();
  if (made) kbxSetObject(dictionary, made, key, synchronized);
  return made;
}

Ref<NSObject> kbxObjectForKeyFillerBlock(NSMutableDictionary* dictionary, NSObject* key,
                                         const FillerBlock& fillerBlock) {
  return kbxObjectForKeySynchronized(dictionary, key, false, false, fillerBlock);
}

Ref<NSObject> kbxObjectForKeyMainThreadFillerBlock(NSMutableDictionary* dictionary, NSObject* key,
                                                   const FillerBlock& fillerBlock) {
  return kbxObjectForKeySynchronized(dictionary, key, false, true, fillerBlock);
}

Ref<NSObject> kbxSynchronizedObjectForKeyFillerBlock(NSMutableDictionary* dictionary, NSObject* key,
                                                     const FillerBlock& fillerBlock) {
  return kbxObjectForKeySynchronized(dictionary, key, true, false, fillerBlock);
}

Ref<NSObject> kbxSynchronizedObjectForKeyMainThreadFillerBlock(NSMutableDictionary* dictionary,
                                                               NSObject* key,
                                                               const FillerBlock& fillerBlock) {
  return kbxObjectForKeySynchronized(dictionary, key, true, true, fillerBlock);
}

}  // namespace kbx
