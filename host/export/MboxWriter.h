// MboxWriter: messages, read from their files, in one mailbox file.
#pragma once

#include <string>

#include "host/console/Output.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Writes the message of a file, that of an .emlx file without what is around it, with its envelope
/// line. The sender is that of Return-Path, else the first author; the time that of the arrival,
/// else that of the message.
///
/// False with an error when the file cannot be read: at once, and then nothing was written, or
/// later, and then the message ends there.
bool writeMboxMessage(Output& output, const std::string& path, NSDictionary* attributes,
                      Ref<NSError>* error);

}  // namespace kbx
