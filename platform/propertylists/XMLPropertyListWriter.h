// XMLPropertyListWriter: a property list in the platform's XML form.
#pragma once

#include "platform/objects/NSData.h"

namespace kbx {

/// The whole text in UTF-8: tabs for levels, sorted keys, a line feed at the end.
///
/// list  one in which faultInPropertyList() finds nothing
Ref<NSData> xmlFromPropertyList(NSObject* list);

}  // namespace kbx
