// NSProcessInfo(KBX): questions about the running system and process.
#pragma once

#include <cstdint>

#include "platform/objects/NSError.h"
#include "platform/objects/NSString.h"
#include "platform/system/OperatingSystem.h"

namespace kbx {

// All of these are class operations. None keeps state; any thread may call them.

// ---- The system's version ------------------------------------------------------------------

// Each is true on that release and on later ones. The version query did not exist before 10.10, so
// the first three read the number of the Foundation framework instead.

bool kbxIsMacOSAtLeast10_8();
bool kbxIsMacOSAtLeast10_9();
bool kbxIsMacOSAtLeast10_10();
bool kbxIsMacOSAtLeast10_11();
bool kbxIsMacOSAtLeast10_12();
bool kbxIsMacOSAtLeast10_12_2();
bool kbxIsMacOSAtLeast10_13();
bool kbxIsMacOSAtLeast10_13_2();
bool kbxIsMacOSAtLeast10_14();
bool kbxIsMacOSAtLeast10_15();
bool kbxIsMacOSAtLeast10_15_4();
/// By the number of the Foundation framework, as the betas have one version.
bool kbxIsMacOSAtLeast10_15DeveloperBeta5();

/// Whether the system is of that version or a later one; false before 10.10, whatever the version.
/// (kbxIsOperatingSystemAtLeastVersion:)
bool kbxIsOperatingSystemAtLeastVersion(NSOperatingSystemVersion version);

/// The system's version as "10.15.7", from Gestalt; a number that cannot be had is 0. Never absent.
/// (kbxOSVersionString)
Ref<NSString> kbxOSVersionString();

/// Reads a version of two or three numbers with full stops between them; the third is 0 when it is
/// missing, and so is each that has no digits. (kbxGetOperatingSystemVersion:fromString:error:)
///
/// version     where to store it; absent, or untouched, when false comes back
/// fromString  the text; absent is none
///
/// Fails with -50 of NSOSStatusErrorDomain, "Error parsing OS version: …".
bool kbxGetOperatingSystemVersion(NSOperatingSystemVersion* version, NSString* fromString,
                                  Ref<NSError>* error);

// ---- Limits, edition, surroundings ---------------------------------------------------------

/// How many files the process may have open at once; 0 when the system does not say.
/// (kbxMaximumOpenFilesCount)
std::uint64_t kbxMaximumOpenFilesCount();

/// Sets that number, and the one up to which it could be raised again. Nothing happens when the
/// system refuses. (kbxSetMaximumOpenFilesCount:)
void kbxSetMaximumOpenFilesCount(std::uint64_t count);

/// Whether this is a store's edition: never. (kbxIsMacAppStoreVersion, also a class method that is
/// found by its selector; there is no instance method of that name.)
bool kbxIsMacAppStoreVersion();

/// The user default "KBXAppSandbox". (kbxIsInAppSandbox, also found by its selector)
bool kbxIsInAppSandbox();

/// Whether the environment has "__XCODE_BUILT_PRODUCTS_DIR_PATHS", whatever its value; the log
/// writers ask for another variable. (kbxIsInXcode)
bool kbxIsInXcode();

/// Lets the system know that it may end the process when it is idle, and that it may not do so now,
/// because messages of other processes are expected. (kbxPreventPartialLaunching)
void kbxPreventPartialLaunching();

// ---- Hardware and kernel values ------------------------------------------------------------

/// The model of the machine, or "unknown". Never absent. (kbxHardwareModel)
Ref<NSString> kbxHardwareModel();

/// 0 when it cannot be had. (kbxMaxPhysicalProcessorCount)
std::int32_t kbxMaxPhysicalProcessorCount();

/// In hertz; 0 when it cannot be had. (kbxMaxProcessorFrequency)
std::int64_t kbxMaxProcessorFrequency();

/// A kernel value that is text; absent when it is unknown, empty or no UTF-8.
/// (kbxSysctlStringForKey:)
///
/// key  such as "hw.model"; absent is unknown
Ref<NSString> kbxSysctlStringForKey(NSString* key);

/// A kernel value that is an integer; 0 when it is unknown or wider. (kbxSysctlInt32ForKey:,
/// kbxSysctlInt64ForKey:)
std::int32_t kbxSysctlInt32ForKey(NSString* key);
std::int64_t kbxSysctlInt64ForKey(NSString* key);

// ---- Processes -----------------------------------------------------------------------------

/// Whether a process of the calling process's real user runs whose executable has that name.
/// (kbxIsBSDProcessRunning:)
///
/// name  compared byte by byte; one of more than 16 bytes never matches, because the kernel keeps
///       no more. An absent name, or one without a UTF-8 form, is nobody's.
///
/// Raises NSInternalInconsistencyException, "Invalid parameter not satisfying: err == 0", when the
/// list of processes cannot be had.
bool kbxIsBSDProcessRunning(NSString* name);

}  // namespace kbx
