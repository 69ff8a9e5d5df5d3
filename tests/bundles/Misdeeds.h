// Misdeeds: what no importer should do.
#pragma once

#include <string_view>

#include "platform/objects/NSDictionary.h"

namespace kbx {

/// Does what the name says; false for a name that is none. What does not end the process is told in
/// the attributes.
///
/// crash       writes to address 0
/// abort, exit end the process
/// hang        never returns
/// spin        never returns and never rests
/// odd-throw   raises something that is no exception
/// memory      takes memory until there is no more
/// odd-value, odd-key  set an attribute that no importer may set
/// trace       attaches to another process
/// PATH        opens a file: "TestMailOpened" is the error number
/// change PATH, make PATH  tries to change the mode of a file, to make a file, likewise
/// connect, run, fork, signal  tries it, likewise
/// chatter     writes to the standard streams
bool doMisdeed(std::string_view name, NSMutableDictionary* attributes);

}  // namespace kbx
