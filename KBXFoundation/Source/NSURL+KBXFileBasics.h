// NSURL(KBXFileBasics): the parts of a file location, what is there, and how locations relate.
#pragma once

#include <cstddef>
#include <string>

#include "platform/files/NSURL.h"
#include "platform/objects/NSError.h"

namespace kbx {

// An absent location gives an absent result, "" for bytes and false for a question. Any thread may
// call these functions.

// ---- Paths ---------------------------------------------------------------------------------

/// The path without ".", ".." and empty components. (kbxAbsolutePath)
Ref<NSString> kbxAbsolutePath(NSURL* url);
/// The location of that path. (kbxStandardizedFileURL)
Ref<NSURL> kbxStandardizedFileURL(NSURL* url);
/// The path as system calls take it. (kbxFileSystemRepresentation)
std::string kbxFileSystemRepresentation(NSURL* url);
/// Stores that with a closing zero; false when it does not fit, or there is no buffer.
/// (kbxGetFileSystemRepresentation:maxLength:)
///
/// maxLength  the size of the buffer in bytes
bool kbxGetFileSystemRepresentation(NSURL* url, char* buffer, std::size_t maxLength);
/// The location of a path in bytes, not marked as a folder's; absent for null and "". A class
/// operation. (kbxURLWithFileSystemRepresentation:)
Ref<NSURL> kbxURLWithFileSystemRepresentation(const char* path);

// ---- Parts ---------------------------------------------------------------------------------

/// The location without its last path component; the root's is the root. (kbxParent)
Ref<NSURL> kbxParent(NSURL* url);
/// The last path component, "/" for the root. (kbxName)
Ref<NSString> kbxName(NSURL* url);
/// The location without its path extension. (kbxBasenameURL)
Ref<NSURL> kbxBasenameURL(NSURL* url);
/// The name of that. (kbxBasename)
Ref<NSString> kbxBasename(NSURL* url);
/// The text behind the last dot of the name, "" without one. (kbxPathExtension)
Ref<NSString> kbxPathExtension(NSURL* url);
/// Whether that is the text, in any case. (kbxHasExtension:)
bool kbxHasExtension(NSURL* url, NSString* extension);
/// The location with the extension behind the name. (kbxWithExtension:)
Ref<NSURL> kbxWithExtension(NSURL* url, NSString* extension);
/// The location with the extension in the place of its own. (kbxChangeToExtension:)
Ref<NSURL> kbxChangeToExtension(NSURL* url, NSString* extension);
/// The location of `name` in this one. (kbxChild:)
///
/// name  required; when missing, raises "Precondition Failed: name"
Ref<NSURL> kbxChild(NSURL* url, NSString* name);

// ---- For display ---------------------------------------------------------------------------

/// The name with "/" for each ":". (kbxDisplayNameWithExtension)
Ref<NSString> kbxDisplayNameWithExtension(NSURL* url);
/// The system's name for the item when it exists, else kbxName(). (kbxDisplayName)
Ref<NSString> kbxDisplayName(NSURL* url);
/// The names on the way to the item with " ‣ " between them. (kbxDisplayPath)
///
/// Of what does not exist these are the plain components: without "/" and "Volumes" below a folder
/// of volumes, else with the volume's name in the place of "/" where it has one.
Ref<NSString> kbxDisplayPath(NSURL* url);

// ---- What is there -------------------------------------------------------------------------

// Links are followed unless noted. Nothing that goes wrong is reported: the answer is false.

bool kbxPathExists(NSURL* url);
/// A regular file. (kbxFileExists)
bool kbxFileExists(NSURL* url);
bool kbxDirectoryExists(NSURL* url);
/// A link, wherever it leads. (kbxSymbolicLinkExists)
bool kbxSymbolicLinkExists(NSURL* url);
/// A folder that is shown as one file. (kbxPackageExists)
bool kbxPackageExists(NSURL* url);
/// An application; before 10.11 a link to one is none. (kbxApplicationExists)
bool kbxApplicationExists(NSURL* url);
/// The root of a volume, or any place in /Volumes, mounted or not. (kbxVolumeExists)
bool kbxVolumeExists(NSURL* url);

/// Whether the item exists before the time is over; asks again and again without a pause.
/// (kbxWaitUntilPathExistsWithTimeout:)
///
/// timeout  seconds; 0 and less is false at once, even for what exists
bool kbxWaitUntilPathExistsWithTimeout(NSURL* url, double timeout);

// ---- Resource values -----------------------------------------------------------------------

/// A resource value, or the one that was answered before. (kbxResourceValueForKey:error:)
///
/// Fails with the platform's error, unchanged, when it cannot be read; with error 1001 and the
/// frame "-[NSURL(KBXFileBasics) kbxResourceValueForKey:error:] (389)" when there is no such value.
Ref<NSObject> kbxResourceValueForKey(NSURL* url, NSString* key, Ref<NSError>* error);
/// A resource value as a boolean, read afresh from 10.9 on; false when it cannot be read.
/// (kbxBOOLForResourceKey:followSymlinks:)
bool kbxBOOLForResourceKey(NSURL* url, NSString* key, bool followSymlinks);
/// Makes the next question for the key ask the system. (kbxRemoveCachedResourceValueForKey:)
void kbxRemoveCachedResourceValueForKey(NSURL* url, NSString* key);

// ---- Two locations -------------------------------------------------------------------------

/// Whether the other item lies in this folder, at any depth; it does not lie in itself.
/// (kbxContainsFileURL:)
///
/// Links are followed. Where both exist, and from 10.10 on, the system says what is the same
/// folder; else the paths are compared component by component.
bool kbxContainsFileURL(NSURL* url, NSURL* other);
/// Whether both are one location by name: links are not followed, case counts.
/// (kbxIsEqualToFileURL:)
bool kbxIsEqualToFileURL(NSURL* url, NSURL* other);

/// This location, or, where something exists, the first of "NAME-1.EXTENSION", "NAME-2.EXTENSION"
/// … where nothing does. (kbxSimilarNonExistentURL)
///
/// An extension "tar" or "app" before another belongs to it; one with a blank is none. A name has
/// 255 units at the most, for which its stem is cut (kbxStringByAddingSuffix, which raises when the
/// extension alone is too long). One search runs at a time in a process; nothing is reserved.
Ref<NSURL> kbxSimilarNonExistentURL(NSURL* url);
/// The same for the place of this name in another folder. (kbxSimilarNonExistentURLInDirectory:)
///
/// directory  raises "Precondition Failed: [directory kbxDirectoryExists]" when it is none
Ref<NSURL> kbxSimilarNonExistentURLInDirectory(NSURL* url, NSURL* directory);

// ---- The home folder: class operations -----------------------------------------------------

/// The user's own home folder, also in a sandbox, where the process is told another.
/// (kbxRealHomeDirectoryURL)
///
/// From the password database, which is asked until it answers; then the answer is kept. Without
/// one, made of the home folder that the process is told, and logged. Raises "Precondition Failed:
/// NO" when that lies in a sandbox of unknown layout. Callers wait for each other.
Ref<NSURL> kbxRealHomeDirectoryURL();
/// What the password database says; absent, and logged, when it says nothing.
/// (kbxGetpwuidRealHomeDirectoryURL)
Ref<NSURL> kbxGetpwuidRealHomeDirectoryURL();
/// Whether the home folder and the machine's applications lie on two volumes; false when either
/// volume cannot be told. (kbxIsHomeDirectoryOnSeparateVolume)
bool kbxIsHomeDirectoryOnSeparateVolume();

}  // namespace kbx
