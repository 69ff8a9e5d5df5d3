// raisedBy: the exception that a call raises, for a test to look at.
#pragma once

#include <string>

#include "platform/objects/NSException.h"

namespace kbx {

/// Absent when the call returns. Other C++ exceptions pass.
template <class Call>
Ref<NSException> raisedBy(Call call) {
  try {
    call();
  } catch (const Raised& raised) {
    return raised.exception();
  }
  return nullptr;
}

/// The exception's name as UTF-8; "" when the call returns.
template <class Call>
std::string nameRaisedBy(Call call) {
  Ref<NSException> exception = raisedBy(call);
  return exception && exception->name() ? exception->name()->lossyUTF8() : "";
}

}  // namespace kbx
