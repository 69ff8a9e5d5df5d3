// HardMessages: messages made to be hard for whoever reads mail. Each has one word planted where it
// is found only by reading the message to its end or to its bottom.
#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace kbx {

/// Takes the bytes of a message, one piece after the other.
using Sink = std::function<void(std::string_view)>;

struct HardMessage {
  std::string_view name;       // letters and hyphens, good as a file's name
  std::string_view summary;    // at full size
  std::string_view attribute;  // where the planted word is found
  bool isOnDemand;             // too large to be made unasked
  /// Writes it. What it has many of it has `scale` times as often: 1 for the full size.
  void (*write)(const Sink& sink, double scale);
};

/// The planted word; it is in the attribute in this form, and in no other place.
inline constexpr std::string_view kPlantedWord = "quillwort7lantern";

std::span<const HardMessage> hardMessages();
/// Absent when none has this name.
const HardMessage* hardMessageNamed(std::string_view name);

}  // namespace kbx
