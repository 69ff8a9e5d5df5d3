#include "platform/resources/BundleLayout.h"

#include <algorithm>
#include <string_view>

#include "platform/files/FileSystem.h"
#include "platform/text/ASCII.h"

namespace kbx {
namespace {

constexpr std::string_view kPackageEndings[] = {
    ".app",           ".appex",   ".bundle",     ".component",   ".dsym",
    ".kext",          ".mbox",    ".mdimporter", ".mpkg",        ".pkg",
    ".photoslibrary", ".plugin",  ".prefpane",   ".qlgenerator", ".rtfd",
    ".saver",         ".service", ".wdgt",       ".xcodeproj",   ".xpc",
};

bool hasEnding(std::string_view path, std::string_view ending) {
  const std::string_view name = path.substr(path.rfind('/') + 1);
  return name.size() > ending.size() && endsIgnoringASCIICase(name, ending);
}

bool isOfKind(const std::string& path, FileStatus::Kind kind) {
  FileStatus status;
  return FileSystem::current().statusOfPath(path, &status) == 0 && status.kind == kind;
}

bool isLaidOutAsBundle(const std::string& path) {
  const std::string contents = path + "/Contents/";
  return isOfKind(contents + "Info.plist", FileStatus::Kind::Regular) &&
         (isOfKind(contents + "Linux", FileStatus::Kind::Directory) ||
          isOfKind(contents + "MacOS", FileStatus::Kind::Directory));
}

}  // namespace

bool isApplication(const std::string& path) {
  return hasEnding(path, ".app") && isLaidOutAsBundle(path);
}

bool isPackage(const std::string& path) {
  return std::ranges::any_of(kPackageEndings,
                             [&path](auto ending) { return hasEnding(path, ending); }) ||
         isLaidOutAsBundle(path);
}

}  // namespace kbx
