#include "host/doctor/Examinations.h"

#include <filesystem>
#include <fstream>
#include <system_error>

#include "host/import/ImporterCatalog.h"
#include "host/import/ScratchFolder.h"
#include "host/store/Maintenance.h"
#include "host/store/Store.h"
#include "host/store/StoreErrors.h"
#include "host/workers/ImportWorkers.h"
#include "platform/files/FileNames.h"
#include "platform/files/FileSystem.h"
#include "platform/objects/NSData.h"
#include "platform/preferences/Preferences.h"
#include "platform/preferences/PreferencesFolder.h"
#include "platform/propertylists/NSPropertyListSerialization.h"

namespace kbx {
namespace {

using Level = Finding::Level;

constexpr char kReinstall[] = "Install ferncase again, with its folder lib/ferncase.";
constexpr char kMessageType[] = "com.apple.mail.email";
constexpr char kMailType[] = "com.apple.mail.emlx";

std::string textOf(int number) { return std::generic_category().message(number); }

/// Whether an importer can be loaded, tried in a worker, since it may crash there.
bool canLoad(const std::string& path, std::string* reason) {
  ImportSettings settings;
  settings.workers = 1;
  settings.importer = path;
  settings.limits.seconds = settings.limits.processorSeconds = 10;
  std::string ignored;
  return ImportWorkers(settings).load(&ignored, reason);
}

void requireImporter(const std::vector<InstalledImporter>& importers, const char* type,
                     const char* what, std::vector<Finding>& findings) {
  for (const InstalledImporter& importer : importers)
    if (importer.takes(type)) return;
  findings.push_back({Level::Problem, std::string("no importer takes ") + what, kReinstall});
}

std::string megabytes(std::uintmax_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

/// A folder that is made and removed again.
void examineFolder(ScratchFolder::Place place, const std::string& what, const char* variable,
                   std::vector<Finding>& findings) {
  constexpr std::uintmax_t kLittle = std::uintmax_t{64} << 20;
  const ScratchFolder folder(place);
  if (folder.failure())
    return findings.push_back(
        {Level::Problem, what + " cannot be made: " + textOf(folder.failure()),
         std::string("Set ") + variable + " to a folder of yours that can be written."});
  const std::string parent = folder.path().substr(0, folder.path().rfind('/'));
  std::error_code unknown;
  const auto space = std::filesystem::space(parent, unknown);
  if (!unknown && space.available < kLittle)
    findings.push_back({Level::Warning,
                        what + " has only " + megabytes(space.available) + " left: " + parent,
                        "Make room there; large messages may fail."});
  else if (place == ScratchFolder::Place::Memory && !isInMemory(folder.path()))
    findings.push_back({Level::Warning, what + " is not in memory: " + parent,
                        "Mount a tmpfs at /dev/shm, or set XDG_RUNTIME_DIR; imports are slower "
                        "without it and write to the disk."});
  else
    findings.push_back(Finding::fine(what + " is in " + parent));
}

/// What to do about a store that cannot be read.
const char* adviceOnStore(std::int64_t code) {
  switch (code) {
    case StoreDamagedError:
      return "Remove it, and index the folders again: ferncase index DIR.";
    case StoreNewerError:
    case StoreForeignError:
      return "Move it away and index the folders again, or name another store with --db.";
    case StoreOlderError:
      return "Bring it up to date: ferncase index.";
    default:
      return "See whose it is and who may read it, or name another store with --db.";
  }
}

}  // namespace

void examineImporters(std::vector<Finding>& findings) {
  const auto importers = installedImporters();
  for (const InstalledImporter& importer : importers) {
    std::string reason;
    if (canLoad(importer.path, &reason))
      findings.push_back(Finding::fine("importer can be loaded: " + importer.path));
    else
      findings.push_back({Level::Problem,
                          "importer cannot be loaded: " + importer.path + ": " + reason,
                          "Remove it or install it again."});
  }
  requireImporter(importers, kMessageType, "messages (.eml)", findings);
  requireImporter(importers, kMailType, "the mail client's messages (.emlx)", findings);
}

void examineImport(std::vector<Finding>& findings) {
  const ScratchFolder folder;
  const std::string path = folder.path() + "/message.eml";
  std::ofstream(path) << "Subject: Hello\n\nGood morning\n";
  ImportSettings settings;
  settings.workers = 1;
  settings.inputs = {path};
  ImportWorkers workers(settings);
  bool isAsked = false;
  std::string fault = "it was not answered";
  workers.run(
      [&] {
        return std::exchange(isAsked, true) ? std::nullopt : std::optional(Input{path, {}});
      },
      [&](const Input&, NSDictionary* attributes, NSError* error) {
        fault = error ? error->localizedDescription()->lossyUTF8() : "";
        if (attributes && !isEqual(attributes->objectForKey("kMDItemSubject"_ns), "Hello"_ns))
          fault = "its subject was not found";
      });
  if (fault.empty())
    findings.push_back(Finding::fine("a message can be imported"));
  else
    findings.push_back({Level::Problem, "a message cannot be imported: " + fault, kReinstall});
}

void examineFolders(std::vector<Finding>& findings) {
  examineFolder(ScratchFolder::Place::Memory, "the staging folder", "XDG_RUNTIME_DIR", findings);
  examineFolder(ScratchFolder::Place::Disk, "the temporary folder", "TMPDIR", findings);
}

void examineStore(std::vector<Finding>& findings) {
  const auto path = defaultStorePath();
  if (!path)
    return findings.push_back({Level::Warning, "there is no place for the store",
                               "Set HOME or XDG_DATA_HOME to an absolute path."});
  Ref<NSError> error;
  if (const auto status = statusOf(*path, &error))
    return findings.push_back(
        Finding::fine("the store has " + std::to_string(status->messages) + " messages: " + *path));
  if (error->code() == StoreMissingError)
    return findings.push_back(Finding::fine("nothing is indexed yet: " + *path));
  findings.push_back({Level::Problem,
                      "the store cannot be used: " + error->localizedDescription()->lossyUTF8(),
                      adviceOnStore(error->code())});
}

void examinePreferences(std::vector<Finding>& findings) {
  const auto folder = preferencesFolder();
  if (!folder)
    return findings.push_back({Level::Warning, "there is no place for preferences",
                               "Set HOME or XDG_CONFIG_HOME to an absolute path."});
  const std::string path = *folder + "/" + *preferencesFileName(applicationDomainName());
  FileStatus status;
  if (FileSystem::current().statusOfPath(path, &status) == -ENOENT)
    return findings.push_back(Finding::fine("no preferences are set: " + path));
  auto url = NSURL::fileURLWithFileSystemRepresentation(path, false);
  Ref<NSError> error;
  auto bytes = NSData::dataWithContentsOfURL(url, NSDataReadingNone, &error);
  auto list = bytes ? NSPropertyListSerialization::propertyListWithData(
                          bytes, NSPropertyListImmutable, nullptr, &error)
                    : nullptr;
  if (cast<NSDictionary>(list))
    return findings.push_back(Finding::fine("the preferences can be read: " + path));
  const std::string reason = error ? error->localizedDescription()->lossyUTF8() : "no dictionary";
  findings.push_back({Level::Problem, "the preferences cannot be read: " + path + ": " + reason,
                      "Repair the file, or remove it to begin anew."});
}

void examineProtections(const Protections& protections, std::vector<Finding>& findings) {
  if (protections.fileRules > 0)
    findings.push_back(Finding::fine("importers can read only what is named (Landlock " +
                                     std::to_string(protections.fileRules) + ")"));
  else
    findings.push_back({Level::Warning,
                        "importers can read whatever you can read: no Landlock: " +
                            textOf(protections.fileRulesError),
                        "Use Linux 5.13 or later with \"landlock\" among its security modules; a "
                        "container must allow the calls landlock_*."});
  if (protections.systemCalls)
    findings.push_back(Finding::fine("importers can neither connect nor start programs (seccomp)"));
  else
    findings.push_back({Level::Warning,
                        "importers can connect and start programs: no seccomp: " +
                            textOf(protections.systemCallsError),
                        "Use a kernel with seccomp filters; a container must allow the call "
                        "seccomp."});
}

void examineSandbox(std::vector<Finding>& findings) {
  examineProtections(protectionsHere(), findings);
}

}  // namespace kbx
