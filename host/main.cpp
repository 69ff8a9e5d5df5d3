// ferncase: the metadata host.
#include <cerrno>
#include <exception>

#include "host/CommandLine.h"
#include "host/console/Interruption.h"
#include "host/console/StandardStreams.h"
#include "host/import/PrivateFiles.h"
#include "platform/objects/NSError.h"

namespace {

/// The command's answer, unless what it wrote did not arrive.
kbx::ExitCode finish(kbx::Console& console, kbx::ExitCode code) {
  if (console.output.flush()) return code;
  const int failure = console.output.failure();
  if (failure == EPIPE) return kbx::kReaderGone;  // whoever read has what it wanted
  console.diagnostics.failure("standard output",
                              kbx::posixError(failure)->localizedFailureReason());
  return kbx::kBroken;
}

}  // namespace

int main(int argc, char** argv) {
  kbx::prepareStandardStreams();
  kbx::keepNewFilesPrivate();
  kbx::DescriptorOutput output(kbx::kStandardOutput);
  kbx::DescriptorOutput complaints(kbx::kStandardError);
  kbx::Diagnostics diagnostics(complaints);
  kbx::Console console{output, diagnostics};
  try {
    const auto code =
        finish(console, kbx::runCommandLine({argv + (argc > 0), argv + argc}, console));
    kbx::Interruption::fulfil();
    return code;
  } catch (const std::exception& exception) {
    diagnostics.message(exception.what());
    return kbx::kBroken;
  }
}
