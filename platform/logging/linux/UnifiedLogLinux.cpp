// This system has no unified log; the journal, where one runs, takes the entries with their
// subsystem and category as fields: journalctl SUBSYSTEM=… CATEGORY=…
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <sys/uio.h>
#include <systemd/sd-journal.h>

#include "platform/logging/UnifiedLog.h"
#include "platform/logging/linux/JournalFields.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

class JournalLog final : public OSLog {
 public:
  JournalLog(NSString* subsystem, NSString* category)
      : _subsystem(subsystem), _category(category) {}

  void writeError(const char* text) override {
    JournalFields fields = errorEntry(_subsystem, _category, text);
    std::array<iovec, std::tuple_size_v<JournalFields>> parts;
    for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = {fields[i].data(), fields[i].size()};
    // Its result does not matter: a log that cannot be written must not stop anything.
    sd_journal_sendv(parts.data(), static_cast<int>(parts.size()));
  }

 private:
  const Ref<NSString> _subsystem;
  const Ref<NSString> _category;
};

class JournalUnifiedLog final : public UnifiedLog {
 public:
  bool isAvailable() override { return false; }
  Ref<OSLog> create(NSString* subsystem, NSString* category) override {
    return Ref<OSLog>::adopt(new JournalLog(subsystem, category));
  }
};

}  // namespace

JournalFields errorEntry(NSString* subsystem, NSString* category, const char* text) {
  return {std::string("MESSAGE=") + text, "PRIORITY=3",  // the number of "err"
          "SUBSYSTEM=" + descriptionOf(subsystem)->lossyUTF8(),
          "CATEGORY=" + descriptionOf(category)->lossyUTF8()};
}

KBX_SERVICE(UnifiedLog, JournalUnifiedLog)

}  // namespace kbx
