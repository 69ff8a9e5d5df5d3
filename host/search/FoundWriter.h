// FoundWriter: what `ferncase search` prints of each message that it finds.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/console/Output.h"
#include "host/search/Search.h"

namespace kbx {

struct FoundSettings {
  enum class Form : std::uint8_t {
    Paths,       // a path a line
    NulPaths,    // a NUL behind each path
    Lines,       // date, sender, subject and path, for people
    Attributes,  // those of `names`, under the path
    JSON,        // an array of objects
    JSONLines    // an object a line
  };

  Form form = Form::Paths;
  std::vector<std::string> names = {};  // attributes that objects hold too
  bool hasSnippets = false;
  bool hasColours = false;
};

/// Writes the messages in their order. What is for people cannot drive a terminal; paths of Paths
/// and NulPaths are the bytes themselves.
class FoundWriter {
 public:
  virtual ~FoundWriter() = default;
  virtual void begin() {}
  /// False with an error when the store cannot be read.
  virtual bool found(Search& search, std::int64_t id, Ref<NSError>* error) = 0;
  virtual void end() {}
};

/// reader  the one that the searches use
std::unique_ptr<FoundWriter> makeFoundWriter(Output& output, StoreReader& reader,
                                             FoundSettings settings);

}  // namespace kbx
