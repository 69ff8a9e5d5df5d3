#include "platform/accounts/NSPathUtilities.h"

#include "platform/accounts/UserAccounts.h"
#include "platform/files/FileNames.h"

namespace kbx {

Ref<NSString> NSUserName() {
  return stringWithFileSystemRepresentation(UserAccounts::current().loginName());
}

Ref<NSString> NSHomeDirectory() {
  return stringWithFileSystemRepresentation(UserAccounts::current().homeDirectory());
}

}  // namespace kbx
