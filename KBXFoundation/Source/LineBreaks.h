// LineBreaks: the loops that make every line break a line feed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kbx {

/// The ways to do it, the fastest first: 64 bytes with an instruction that leaves some out, 32
/// bytes in one register, in two, or one byte at a time.
enum class LineBreakLoop : std::uint8_t { Compressing, Wide, Narrow, Bytewise };

/// Whether the processor can run the loop. Every one can run Bytewise.
bool hasLineBreakLoop(LineBreakLoop loop);

/// Copies bytes, each CR LF and each other CR as one LF, and answers how many it wrote. Any thread.
///
/// output  room for as many bytes as the input has, elsewhere in memory; what lies behind the bytes
///         written may have been written as well
/// loop    one that the processor can run; without it, the fastest of these
std::size_t copyWithLineFeeds(std::span<const std::uint8_t> input, std::uint8_t* output,
                              LineBreakLoop loop);
std::size_t copyWithLineFeeds(std::span<const std::uint8_t> input, std::uint8_t* output);

}  // namespace kbx
