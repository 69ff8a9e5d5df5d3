// XMLPropertyListWriter: a property list in the platform's XML form.
#pragma once

#include <string>

#include "platform/objects/NSObject.h"

namespace kbx {

/// The whole text in UTF-8: tabs for levels, sorted keys, a line feed at the end.
///
/// list  one in which faultInPropertyList() finds nothing
std::string xmlFromPropertyList(NSObject* list);

}  // namespace kbx
