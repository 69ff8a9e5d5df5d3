// NSMutableDictionary(KBXFillerBlocks): a dictionary that makes missing values by itself.
#pragma once

#include <functional>

#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Makes the value of a key that has none. Absent is no value and is not stored.
using FillerBlock = std::function<Ref<NSObject>()>;

// The synchronized forms hold the dictionary's own lock for each lookup and each store, so threads
// may share the dictionary; the others need a dictionary that belongs to one thread. An absent
// dictionary gives an absent result and fills nothing.

/// The value of a key, or absent. (kbxObjectForKey:synchronized:)
Ref<NSObject> kbxObjectForKeySynchronized(NSMutableDictionary* dictionary, NSObject* key,
                                          bool synchronized);

/// Stores a value. Raises NSInvalidArgumentException when it or the key is absent.
/// (kbxSetObject:forKey:synchronized:)
void kbxSetObject(NSMutableDictionary* dictionary, NSObject* object, NSObject* key,
                  bool synchronized);

/// The value of a key; where there is none, what the filler answers, which is then stored.
/// (kbxObjectForKey:synchronized:mainThread:fillerBlock:)
///
/// mainThread   runs the filler on the main thread (KBXDispatch::mainThreadReturnObject)
/// fillerBlock  not called when there is a value
///
/// Absent, with nothing stored, when the filler answers absent: the next lookup calls it again.
/// What the filler raises passes on, and nothing is stored. An absent key has no value, so the
/// store of what the filler made raises.
///
/// No lock is held while a filler runs, so it may take its time, and may use the dictionary. For
/// that, threads that miss a key at the same moment each call their filler; each gets what its own
/// one made, and the last to store it is the one that the dictionary keeps.
Ref<NSObject> kbxObjectForKeySynchronized(NSMutableDictionary* dictionary, NSObject* key,
                                          bool synchronized, bool mainThread,
                                          const FillerBlock& fillerBlock);

/// Not synchronized, the filler on the calling thread. (kbxObjectForKey:fillerBlock:)
Ref<NSObject> kbxObjectForKeyFillerBlock(NSMutableDictionary* dictionary, NSObject* key,
                                         const FillerBlock& fillerBlock);
/// Not synchronized, the filler on the main thread. (kbxObjectForKey:mainThreadFillerBlock:)
Ref<NSObject> kbxObjectForKeyMainThreadFillerBlock(NSMutableDictionary* dictionary, NSObject* key,
                                                   const FillerBlock& fillerBlock);
/// Synchronized, the filler on the calling thread. (kbxSynchronizedObjectForKey:fillerBlock:)
Ref<NSObject> kbxSynchronizedObjectForKeyFillerBlock(NSMutableDictionary* dictionary, NSObject* key,
                                                     const FillerBlock& fillerBlock);
/// Synchronized, the filler on the main thread.
/// (kbxSynchronizedObjectForKey:mainThreadFillerBlock:)
Ref<NSObject> kbxSynchronizedObjectForKeyMainThreadFillerBlock(NSMutableDictionary* dictionary,
                                                               NSObject* key,
                                                               const FillerBlock& fillerBlock);

}  // namespace kbx
