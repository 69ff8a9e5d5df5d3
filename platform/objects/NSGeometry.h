// NSPoint, NSSize and NSRect: places and extents on a plane, and their text forms.
#pragma once

#include "platform/Export.h"
#include "platform/objects/Ref.h"

namespace kbx {

class NSString;

struct NSPoint {
  double x = 0;
  double y = 0;

  friend bool operator==(const NSPoint&, const NSPoint&) = default;
};

struct NSSize {
  double width = 0;
  double height = 0;

  friend bool operator==(const NSSize&, const NSSize&) = default;
};

struct NSRect {
  NSPoint origin;
  NSSize size;

  friend bool operator==(const NSRect&, const NSRect&) = default;
};

/// The texts "{x, y}", "{width, height}" and "{{x, y}, {width, height}}", each number in the
/// fewest digits that read back the same. Never absent.
KBX_PLATFORM Ref<NSString> NSStringFromPoint(NSPoint point);
KBX_PLATFORM Ref<NSString> NSStringFromSize(NSSize size);
KBX_PLATFORM Ref<NSString> NSStringFromRect(NSRect rect);

/// The size of a text such as "{640, 480}", blanks anywhere between its parts; (0, 0) for an
/// absent text and for one of another form.
KBX_PLATFORM NSSize NSSizeFromString(NSString* text);

}  // namespace kbx
