// This system has no unified log; the journal, where one runs, takes the entries with their
// subsystem and category as fields: journalctl SUBSYSTEM=… CATEGORY=…
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <dlfcn.h>
#include <sys/uio.h>
#include <systemd/sd-journal.h>

#include "platform/logging/UnifiedLog.h"
#include "platform/logging/linux/JournalFields.h"
#include "platform/text/Format.h"

namespace kbx {
namespace {

using SendEntry = decltype(&sd_journal_sendv);

/// The journal's function, or none. Its library brings half a dozen others along, so it is loaded
/// by those who log to it and not at every start.
SendEntry sendEntry() {
  static const SendEntry function = [] {
    void* library = dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
    return library ? reinterpret_cast<SendEntry>(dlsym(library, "sd_journal_sendv")) : nullptr;
  }();
  return function;
}

class JournalLog final : public OSLog {
 public:
  JournalLog(NSString* subsystem, NSString* category)
      : _subsystem(subsystem), _category(category) {}

  void writeError(const char* text) override {
    const SendEntry send = sendEntry();
    if (!send) return;
    JournalFields fields = errorEntry(_subsystem, _category, text);
    std::array<iovec, std::tuple_size_v<JournalFields>> parts;
    for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = {fields[i].data(), fields[i].size()};
    // Its result does not matter: a log that cannot be written must not stop anything.
    send(parts.data(), static_cast<int>(parts.size()));
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
