#include "platform/files/NSURL.h"

#include <string_view>
#include <vector>

#include "platform/files/FileNames.h"
#include "platform/files/FileSystem.h"
#include "platform/files/SymbolicLinks.h"
#include "platform/files/WorkingFolder.h"
#include "platform/objects/NSArray.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/SeededHash.h"
#include "platform/resources/ResourceValues.h"

namespace kbx {

KBX_CLASS(NSURL)
KBX_ADOPTS(NSURL, NSCoding)

namespace {

void trimSlashes(std::string& path) {
  while (path.size() > 1 && path.back() == '/') path.pop_back();
}

bool isFolder(const std::string& path) {
  FileStatus status;
  return FileSystem::current().statusOfPath(path, &status) == 0 &&
         status.kind == FileStatus::Kind::Directory;
}

std::string_view nameOf(std::string_view path) {
  return path.size() == 1 ? path : path.substr(path.rfind('/') + 1);
}

/// Where the extension begins, behind its dot; the name's length where there is none. A dot at the
/// start of a name makes it a hidden one.
std::size_t extensionOf(std::string_view name) {
  const std::size_t dot = name.rfind('.');
  return dot == std::string_view::npos || dot == 0 ? name.size() : dot + 1;
}

std::string percentEscaped(std::string_view path) {
  constexpr std::string_view kKept = "-_.!~*'()$&+,/:;=@";
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string text;
  for (unsigned char byte : path) {
    const bool isAlphanumeric = (byte >= '0' && byte <= '9') ||
                                ((byte | 0x20) >= 'a' && (byte | 0x20) <= 'z' && byte < 0x80);
    if (isAlphanumeric || kKept.find(static_cast<char>(byte)) != std::string_view::npos)
      text += static_cast<char>(byte);
    else
      text += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
  }
  return text;
}

std::string standardized(std::string_view path) {
  std::vector<std::string_view> kept;
  for (std::size_t at = 0; at < path.size();) {
    std::size_t end = path.find('/', at);
    if (end == std::string_view::npos) end = path.size();
    std::string_view name = path.substr(at, end - at);
    at = end + 1;
    if (name == ".." && !kept.empty()) kept.pop_back();
    if (!name.empty() && name != "." && name != "..") kept.push_back(name);
  }
  std::string result;
  for (auto name : kept) result.append("/").append(name);
  return result.empty() ? "/" : result;
}

}  // namespace

Ref<NSURL> NSURL::make(std::string path, bool isDirectory) {
  trimSlashes(path);
  const bool isRoot = path == "/";
  return Ref<NSURL>::adopt(new NSURL(std::move(path), isDirectory || isRoot));
}

Ref<NSURL> NSURL::fileURLWithFileSystemRepresentation(std::string_view path, bool isDirectory) {
  if (path.empty() || path.find('\0') != std::string_view::npos) return nullptr;
  if (path.front() == '/') return make(std::string(path), isDirectory);
  std::string folder = workingFolder();
  if (folder.empty()) return nullptr;
  return make(folder.append("/").append(path), isDirectory);
}

Ref<NSURL> NSURL::fileURLWithPath(NSString* path, bool isDirectory) {
  auto bytes = kbx::fileSystemRepresentation(path);
  return bytes ? fileURLWithFileSystemRepresentation(*bytes, isDirectory) : nullptr;
}

Ref<NSURL> NSURL::fileURLWithPath(NSString* path) {
  auto bytes = kbx::fileSystemRepresentation(path);
  if (!bytes || bytes->empty()) return nullptr;
  return fileURLWithFileSystemRepresentation(*bytes, bytes->back() == '/' || isFolder(*bytes));
}

Ref<NSString> NSURL::path() const { return stringWithFileSystemRepresentation(_path); }

Ref<NSString> NSURL::absoluteString() const {
  std::string text = "file://" + percentEscaped(_path);
  if (_isDirectory && _path != "/") text += '/';
  return NSString::stringByTakingUTF8(std::move(text));
}

Ref<NSString> NSURL::lastPathComponent() const {
  return stringWithFileSystemRepresentation(nameOf(_path));
}

Ref<NSString> NSURL::pathExtension() const {
  const std::string_view name = nameOf(_path);
  return stringWithFileSystemRepresentation(name.substr(extensionOf(name)));
}

Ref<NSURL> NSURL::URLByAppendingPathComponent(NSString* name) const {
  auto bytes = kbx::fileSystemRepresentation(name);
  if (!bytes) return nullptr;
  const std::size_t start = std::min(bytes->find_first_not_of('/'), bytes->size());
  std::string path = _path == "/" ? _path : _path + "/";
  return make(path.append(*bytes, start), bytes->ends_with('/'));
}

Ref<NSURL> NSURL::URLByDeletingLastPathComponent() const {
  return make(_path.substr(0, _path.rfind('/') + 1), true);
}

Ref<NSURL> NSURL::URLByAppendingPathExtension(NSString* extension) const {
  const auto bytes = kbx::fileSystemRepresentation(extension);
  if (!bytes || bytes->find('/') != std::string::npos) return nullptr;
  const bool isChanged = !bytes->empty() && _path != "/";
  return make(isChanged ? _path + "." + *bytes : _path, _isDirectory);
}

Ref<NSURL> NSURL::URLByDeletingPathExtension() const {
  const std::string_view name = nameOf(_path);
  const std::size_t extension = name.size() - extensionOf(name);
  return make(_path.substr(0, _path.size() - (extension ? extension + 1 : 0)), _isDirectory);
}

Ref<NSURL> NSURL::URLByStandardizingPath() const { return make(standardized(_path), _isDirectory); }

Ref<NSURL> NSURL::URLByResolvingSymlinksInPath() const {
  auto path = pathByResolvingLinks(_path);
  return make(path ? std::move(*path) : standardized(_path), _isDirectory);
}

Ref<NSArray> NSURL::pathComponents() const {
  NSArray::Elements names = {"/"_ns};
  for (std::size_t at = 1; at < _path.size();) {
    const std::size_t end = std::min(_path.find('/', at), _path.size());
    if (end > at)
      names.push_back(
          stringWithFileSystemRepresentation(std::string_view(_path).substr(at, end - at)));
    at = end + 1;
  }
  return NSArray::arrayWithElements(std::move(names));
}

Ref<NSObject> NSURL::resourceValueForKey(NSString* key, Ref<NSError>* error) const {
  if (auto kept = _resources.valueForKey(key)) return kept;
  const std::uint64_t removals = _resources.removals();
  Ref<NSObject> value = readResourceValue(const_cast<NSURL*>(this), key, error);
  if (value) _resources.setValue(value, key, removals);
  return value;
}

void NSURL::removeCachedResourceValueForKey(NSString* key) const {
  _resources.removeValueForKey(key);
}

void NSURL::removeAllCachedResourceValues() const { _resources.removeAllValues(); }

Ref<NSString> NSURL::description() const { return absoluteString(); }

bool NSURL::isEqual(NSObject* other) const {
  auto* url = cast<NSURL>(other);
  return url && url->_path == _path && url->_isDirectory == _isDirectory;
}

std::size_t NSURL::hash() const { return seededHash(_path); }

}  // namespace kbx
