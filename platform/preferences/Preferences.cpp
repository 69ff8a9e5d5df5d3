#include "platform/preferences/Preferences.h"

#include "platform/preferences/FilePreferences.h"

namespace kbx {

Preferences::~Preferences() = default;

bool Preferences::change(NSString*, NSDictionary*) { return false; }

bool Preferences::replace(NSString*, NSDictionary*) { return false; }

bool Preferences::synchronize() { return true; }

KBX_SERVICE(Preferences, FilePreferences)

}  // namespace kbx
