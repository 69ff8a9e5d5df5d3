#include "platform/archives/ArchiveHead.h"

#include "platform/archives/ArchiveFormat.h"
#include "platform/objects/NSNumber.h"
#include "platform/propertylists/NSKeyedArchiverUID.h"

namespace kbx {

std::optional<std::size_t> ArchiveHead::placeOf(NSObject* reference) const {
  auto* identifier = cast<NSKeyedArchiverUID>(reference);
  if (!identifier || identifier->value() >= _objects->count()) return std::nullopt;
  return static_cast<std::size_t>(identifier->value());
}

bool ArchiveHead::read(NSObject* archive, ArchiveFault& fault) {
  auto* head = cast<NSDictionary>(archive);
  if (!head || !isEqual(head->objectForKey(archive::archiver()), archive::archiverName()))
    return fault.fail("no archive of this archiver");
  auto* version = cast<NSNumber>(head->objectForKey(archive::version()));
  if (!version || version->integerValue() != archive::kVersion)
    return fault.fail("an archive of another version");
  _objects = cast<NSArray>(head->objectForKey(archive::objects()));
  auto* top = cast<NSDictionary>(head->objectForKey(archive::top()));
  if (!_objects || !top) return fault.fail("no objects");
  NSObject* root = top->objectForKey(archive::root());
  if (!root) return false;
  const auto place = placeOf(root);
  if (!place) return fault.fail("a root that is no object");
  _root = *place;
  return true;
}

bool ArchiveHead::isAbsent(std::size_t place) const {
  return place == 0 || isEqual(_objects->objectAtIndex(place), archive::null());
}

NSObject* ArchiveHead::part(NSDictionary* parts, NSString* name) const {
  NSObject* value = parts->objectForKey(name);
  if (const auto place = placeOf(value))
    return isAbsent(*place) ? nullptr : _objects->objectAtIndex(*place);
  return value;
}

}  // namespace kbx
