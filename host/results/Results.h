// Results: what standard output holds, a result at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/console/Output.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Takes the results in the order of the inputs and keeps none. Paths are the bytes that the user
/// gave, or that a folder holds.
class Results {
 public:
  virtual ~Results() = default;
  virtual void begin() {}
  virtual void delivered(const std::string& path, NSDictionary* attributes) = 0;
  virtual void failed(const std::string& path, NSError* error) = 0;
  virtual void end() {}
};

/// The attributes for people, failures left out. With headings a line "== PATH" stands above the
/// attributes of each file, and an empty line between the files.
std::unique_ptr<Results> makeTextResults(Output& output, bool hasHeadings);
/// One array of objects, indented.
std::unique_ptr<Results> makeJSONResults(Output& output);
/// One XML property list, an array of dictionaries. A path that no text can hold is data.
std::unique_ptr<Results> makePropertyListResults(Output& output);
/// One object a line.
std::unique_ptr<Results> makeLineResults(Output& output);

}  // namespace kbx
