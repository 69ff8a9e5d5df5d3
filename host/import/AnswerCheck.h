// AnswerCheck: whether an importer's answer is one that can be handed on.
#pragma once

#include <optional>
#include <string>

#include "platform/objects/NSDictionary.h"

namespace kbx {

/// What is wrong with the attributes, in UTF-8; absent when nothing is. They may hold texts,
/// numbers, dates, data and null markers, in arrays and dictionaries with texts as keys, at most
/// 512 levels deep: what can be stored and passed between processes.
std::optional<std::string> faultInAnswer(NSDictionary* attributes);

}  // namespace kbx
