#include "NSError+KBXArchiving.h"

#include <unordered_map>
#include <vector>

#include "platform/objects/NSClass.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

/// References to objects of other programs. They can be archived, but mean nothing afterwards, and
/// reading one may start the program.
constexpr const char* kLiveReferences[] = {"SBObject", "NSAppleEventDescriptor"};

/// Makes archivable copies, those of the errors behind an error before its own. Keeps what is still
/// to do in a list: causes may stand behind causes in any number, and one of them behind many.
class Copies {
 public:
  Ref<NSError> of(NSError* error) {
    _open.push_back(error);
    while (!_open.empty()) {
      NSError* next = _open.back();
      if (openCauses(next)) continue;
      _open.pop_back();
      if (!_made.contains(next)) _made.emplace(next, copyOf(next));
    }
    return _made.at(error);
  }

 private:
  /// Whether copies of other errors have to be made first; they are next then.
  bool openCauses(NSError* error) {
    const std::size_t before = _open.size();
    for (const auto& [key, value] : *error->userInfo())
      if (auto* cause = cast<NSError>(value); cause && !_made.contains(cause))
        _open.push_back(cause);
    return _open.size() > before;
  }

  Ref<NSError> copyOf(NSError* error) {
    auto userInfo = NSMutableDictionary::dictionary();
    for (const auto& [key, value] : *error->userInfo())
      userInfo->setObjectForKey(archivableValue(value), key);
    return NSError::errorWithDomain(error->domain(), error->code(), userInfo);
  }

  Ref<NSObject> archivableValue(NSObject* original) {
    Ref<NSObject> value = original;
    if (auto* error = cast<NSError>(original)) value = _made.at(error);
    for (const char* name : kLiveReferences) {
      NSClass* reference = NSClass::named(name);
      if (reference && value->isKindOfClass(reference)) value = descriptionOf(value);
    }
    return value->conformsToProtocol("NSCoding") ? value : Ref<NSObject>(descriptionOf(value));
  }

  std::vector<NSError*> _open;
  std::unordered_map<NSError*, Ref<NSError>> _made;
};

}  // namespace

Ref<NSError> kbxArchivableError(NSError* error) { return error ? Copies().of(error) : nullptr; }

}  // namespace kbx
