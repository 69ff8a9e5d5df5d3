// StandardStreams: the three streams that a process begins with.
#pragma once

namespace kbx {

inline constexpr int kStandardOutput = 1;
inline constexpr int kStandardError = 2;

/// For the start of the process. A stream that the parent left closed is occupied, so that no file
/// that is opened later takes its number and gets what was meant for the stream; using it fails.
/// Writing to a pipe that nobody reads, or beyond the size that files may have, fails from now on,
/// instead of ending the process.
void prepareStandardStreams();

}  // namespace kbx
