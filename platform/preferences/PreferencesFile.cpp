#include "platform/preferences/PreferencesFile.h"

#include <cerrno>

#include "platform/files/FileSystem.h"
#include "platform/objects/NSClass.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSError.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "platform/system/SystemMessages.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

using State = PreferencesReading::State;

constexpr int kMostSetAside = 100;

/// Whether an error says that this very file is to blame, not the system at this moment.
bool blamesTheFile(NSError* error) {
  auto* cause = cast<NSError>(error->userInfo()->objectForKey(NSUnderlyingErrorKey()));
  return error->code() == NSFileReadNoPermissionError || error->code() == NSFileReadTooLargeError ||
         (cause && (cause->code() == EISDIR || cause->code() == ENOTSUP));
}

PreferencesReading unreadable(NSError* error, const std::string& path) {
  if (error->code() == NSFileReadNoSuchFileError) return {};
  auto complaint =
      stringWithFormat("Preferences: %s is not read: %@"_ns, path, error->localizedDescription());
  return {blamesTheFile(error) ? State::Damaged : State::Failed, nullptr, complaint};
}

bool holds(NSData* data, NSDictionary* values) {
  auto list = NSPropertyListSerialization::propertyListWithData(data, NSPropertyListImmutable,
                                                                nullptr, nullptr);
  return isEqual(list, values);
}

/// XML, which people can read, where it holds the values to the last bit; else the binary form.
Ref<NSData> encoded(NSDictionary* values, Ref<NSError>* error) {
  auto xml = NSPropertyListSerialization::dataWithPropertyList(values, NSPropertyListXMLFormat_v1_0,
                                                               0, error);
  if (xml && holds(xml, values)) return xml;
  return NSPropertyListSerialization::dataWithPropertyList(values, NSPropertyListBinaryFormat_v1_0,
                                                           0, error);
}

bool isTaken(const std::string& path) {
  FileStatus status;
  return FileSystem::current().statusOfPath(path, &status) != -ENOENT;
}

}  // namespace

PreferencesFile::PreferencesFile(const std::string& path)
    : _path(path), _url(NSURL::fileURLWithFileSystemRepresentation(path, false)) {}

PreferencesReading PreferencesFile::read() const {
  Ref<NSError> error;
  auto data = NSData::dataWithContentsOfURL(_url, NSDataReadingNone, &error);
  if (!data) return unreadable(error, _path);
  auto list = NSPropertyListSerialization::propertyListWithData(data, NSPropertyListImmutable,
                                                                nullptr, &error);
  if (auto* values = cast<NSDictionary>(list)) return {State::Good, values, nullptr};
  auto reason = list ? Ref<NSString>("It holds no dictionary."_ns) : error->localizedDescription();
  return {State::Damaged, nullptr,
          stringWithFormat("Preferences: %s is not used: %@"_ns, _path, reason)};
}

Ref<NSString> PreferencesFile::write(NSDictionary* values) const {
  Ref<NSError> error;
  if (!values) {
    const int result = FileSystem::current().remove(_path);
    if (result == 0 || result == -ENOENT) return nullptr;
    error = posixError(-result);
  } else {
    auto data = encoded(values, &error);
    // Who keeps the file elsewhere and a link to it here wants the link to stay.
    const Ref<NSURL> target = _url->URLByResolvingSymlinksInPath();
    if (data && data->writeToURL(target, NSDataWritingAtomic, &error)) return nullptr;
  }
  return stringWithFormat("Preferences: %s is not written: %@"_ns, _path,
                          error->localizedDescription());
}

Ref<NSString> PreferencesFile::setAside(bool* isAside) const {
  std::string aside = _path + ".corrupt";
  for (int number = 2; isTaken(aside) && number <= kMostSetAside; ++number)
    aside = _path + ".corrupt-" + std::to_string(number);
  const int result = isTaken(aside) ? -EEXIST : FileSystem::current().rename(_path, aside);
  *isAside = result == 0;
  if (*isAside) return stringWithFormat("Preferences: %s is kept as %s"_ns, _path, aside);
  return stringWithFormat("Preferences: %s cannot be set aside: %s"_ns, _path,
                          systemMessage(-result));
}

}  // namespace kbx
