#include "platform/accounts/UserAccounts.h"

namespace kbx {

UserAccounts::~UserAccounts() = default;

}  // namespace kbx
