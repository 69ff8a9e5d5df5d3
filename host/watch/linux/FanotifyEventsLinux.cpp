#include "host/watch/linux/FanotifyEventsLinux.h"

#include <fcntl.h>
#include <sys/fanotify.h>
#include <sys/statfs.h>

#include <cstddef>
#include <cstring>

namespace kbx {
namespace {

using Place = FanotifyEvent::Place;

template <typename T>
std::string bytesOf(const T& value) {
  return {reinterpret_cast<const char*>(&value), sizeof value};
}

template <typename T>
std::optional<T> at(std::span<const char> bytes) {
  if (bytes.size() < sizeof(T)) return std::nullopt;
  T value;
  std::memcpy(&value, bytes.data(), sizeof value);
  return value;
}

std::optional<Place::Role> roleOf(const fanotify_event_info_header& header) {
  switch (header.info_type) {
    case FAN_EVENT_INFO_TYPE_DFID_NAME:
      return Place::Role::Entry;
    case FAN_EVENT_INFO_TYPE_OLD_DFID_NAME:
      return Place::Role::Before;
    case FAN_EVENT_INFO_TYPE_NEW_DFID_NAME:
      return Place::Role::After;
    default:
      return std::nullopt;
  }
}

/// A record: its header, the file system, the length and kind of a handle, the handle, a name.
std::optional<Place> placeIn(std::span<const char> record) {
  constexpr std::size_t kFileSystem = sizeof(fanotify_event_info_header);
  constexpr std::size_t kHandle = kFileSystem + sizeof(fsid_t);
  constexpr std::size_t kBytes = kHandle + sizeof(::file_handle);
  const auto header = at<fanotify_event_info_header>(record);
  const auto role = header ? roleOf(*header) : std::nullopt;
  if (!role || record.size() < kBytes) return std::nullopt;
  const auto length = *at<unsigned>(record.subspan(kHandle));
  if (length > record.size() - kBytes) return std::nullopt;
  const auto key = record.subspan(kFileSystem, kBytes - kFileSystem + length);
  const auto name = record.subspan(kBytes + length);
  Place place{*role, {key.begin(), key.end()}, {name.data(), ::strnlen(name.data(), name.size())}};
  if (place.name == ".") place.name.clear();
  return place;
}

FanotifyEvent eventIn(std::span<const char> bytes, const fanotify_event_metadata& metadata) {
  FanotifyEvent event{metadata.mask};
  for (auto rest = bytes.subspan(metadata.metadata_len); !rest.empty();) {
    const auto header = at<fanotify_event_info_header>(rest);
    if (!header || header->len < sizeof *header || header->len > rest.size()) break;
    if (auto place = placeIn(rest.first(header->len))) event.places.push_back(std::move(*place));
    rest = rest.subspan(header->len);
  }
  return event;
}

}  // namespace

std::optional<OpenedFolder> keyOf(int descriptor) {
  alignas(::file_handle) char bytes[sizeof(::file_handle) + MAX_HANDLE_SZ] = {};
  auto& handle = *reinterpret_cast<::file_handle*>(bytes);
  handle.handle_bytes = MAX_HANDLE_SZ;
  struct statfs status;
  OpenedFolder folder;
  if (::fstatfs(descriptor, &status) != 0 ||
      ::name_to_handle_at(descriptor, "", &handle, &folder.mount, AT_EMPTY_PATH) != 0)
    return std::nullopt;
  folder.key = bytesOf(status.f_fsid);
  folder.key.append(bytes, sizeof handle + handle.handle_bytes);
  return folder;
}

bool isOnOneFileSystem(const FolderKey& one, const FolderKey& other) {
  return one.compare(0, sizeof(fsid_t), other, 0, sizeof(fsid_t)) == 0;
}

std::vector<FanotifyEvent> fanotifyEventsIn(std::span<const char> bytes) {
  std::vector<FanotifyEvent> events;
  while (const auto metadata = at<fanotify_event_metadata>(bytes)) {
    const std::size_t length = metadata->event_len;
    if (length > bytes.size() || metadata->metadata_len < sizeof *metadata ||
        metadata->metadata_len > length)
      break;
    events.push_back(eventIn(bytes.first(length), *metadata));
    bytes = bytes.subspan(length);
  }
  return events;
}

}  // namespace kbx
