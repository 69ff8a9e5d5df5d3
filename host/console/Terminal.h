// Terminal: whether somebody looks at a stream.
#pragma once

namespace kbx {

/// How many columns the terminal behind a descriptor has, at least 1; 0 when there is none, or one
/// that understands no control sequences (TERM is "dumb" or not set).
unsigned terminalColumns(int descriptor);

}  // namespace kbx
