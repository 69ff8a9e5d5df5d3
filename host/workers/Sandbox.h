// Sandbox: takes from a process what it does not need for importing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kbx {

/// What a process may still do with files afterwards. What is not there is passed over; links are
/// followed.
struct AllowedFiles {
  std::vector<std::string> readable;  // files, and folders with all that is in them
  std::vector<std::string> writable;  // folders in which files may be made, changed and removed
};

/// Which of the protections hold.
struct Protections {
  int fileRules = 0;  // the version of the kernel's rules for files (Landlock) in force; 0: none
  bool systemCalls = false;  // no network, no other programs, no look at other processes
  int fileRulesError = 0, systemCallsError = 0;  // why not (`errno` values)

  bool areComplete() const { return fileRules > 0 && systemCalls; }
};

/// For ever, and for every thread that this one makes. What the kernel cannot do is left out.
Protections enterSandbox(const AllowedFiles& files);

/// What enterSandbox() would answer here, tried in a process of its own.
Protections protectionsHere();

}  // namespace kbx
