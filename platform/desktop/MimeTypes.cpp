#include "platform/desktop/MimeTypes.h"

#include "platform/desktop/DesktopFolders.h"
#include "platform/desktop/MimeGlobs.h"
#include "platform/files/BoundedFile.h"

namespace kbx {
namespace {

constexpr std::size_t kLargestDatabase = std::size_t{4} << 20;

MimeGlobs sharedGlobs() {
  MimeGlobs globs;
  for (const auto& folder : dataFolders())
    if (const auto text = contentsOfFile(folder + "/mime/globs2", kLargestDatabase))
      globs.add(*text);
  return globs;
}

class SharedMimeTypes final : public MimeTypes {
 public:
  std::string typeOfName(std::string_view name) override {
    static const auto* const globs = new MimeGlobs(sharedGlobs());
    return std::string(globs->typeOfName(name));
  }
};

}  // namespace

MimeTypes::~MimeTypes() = default;

KBX_SERVICE(MimeTypes, SharedMimeTypes)

}  // namespace kbx
