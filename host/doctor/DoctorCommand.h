// DoctorCommand: `ferncase doctor`.
#pragma once

#include <memory>

#include "host/console/Command.h"

namespace kbx {

std::unique_ptr<Command> makeDoctorCommand();

}  // namespace kbx
