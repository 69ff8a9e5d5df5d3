// ReplacedFile: a file that is written beside its place and put there when it is complete.
#pragma once

#include <memory>
#include <string>

#include "host/console/Output.h"
#include "platform/objects/NSError.h"

namespace kbx {

/// Whoever reads the path finds what was there before or all that was written, never a part. What
/// exists and is no regular file, such as a pipe or a device, is written to itself.
class ReplacedFile {
 public:
  /// Absent with an error when nothing can be written there.
  static std::unique_ptr<ReplacedFile> open(const std::string& path, Ref<NSError>* error);
  /// Removes what was written unless it was put in its place.
  ~ReplacedFile();
  ReplacedFile(const ReplacedFile&) = delete;
  ReplacedFile& operator=(const ReplacedFile&) = delete;

  Output& output() noexcept { return _output; }
  /// Puts the file in its place, on the disk. False with an error when not all could be written.
  bool finish(Ref<NSError>* error);

 private:
  ReplacedFile(std::string path, std::string beside, int descriptor)
      : _path(std::move(path)),
        _beside(std::move(beside)),
        _descriptor(descriptor),
        _output(descriptor) {}

  const std::string _path;
  std::string _beside;  // where it is written; empty for the path itself
  int _descriptor;
  DescriptorOutput _output;
};

}  // namespace kbx
