// What the quick search would need the platform for, were it to go on: it never gets that far, or
// leaves the rest to the host. So nothing of the platform's objects is in this program.
#include <cstdlib>

#include "host/search/AttributeFunctions.h"
#include "host/store/StoreErrors.h"
#include "host/store/StoredMessage.h"
#include "host/tokenizer/Characters.h"

namespace kbx {

// Errors are absent: who is told that something failed starts the host, which meets it again.
Ref<NSError> storeError(StoreErrorCode, const std::string&, std::string_view) { return nullptr; }
Ref<NSError> databaseError(sqlite3*, const std::string&) { return nullptr; }
void NSObject::destroy() const noexcept { std::abort(); }  // as there are no objects

// Queries that compare attributes are the host's.
std::unique_ptr<AttributeMatcher> makeAttributeMatcher(const AttributeTest&) { std::abort(); }
void registerAttributeFunctions(Database&) {}
Ref<NSDictionary> importedAttributes(std::string_view, std::optional<std::string_view>,
                                     Ref<NSError>*) {
  return nullptr;
}

// So are words with characters beyond ASCII; of others the tokenizer asks only for what makes
// words.
FoldedCharacter folded(char32_t character) {
  const bool isCapital = character >= 'A' && character <= 'Z';
  return {CharacterKind::Letter, isCapital ? character | 0x20 : character};
}
std::span<const char32_t> expansionOf(char32_t) { return {}; }
char32_t composed(char32_t, char32_t) { return 0; }

}  // namespace kbx
