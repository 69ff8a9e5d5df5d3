// Examinations: what `ferncase doctor` looks at.
#pragma once

#include <string>
#include <vector>

#include "host/doctor/Finding.h"
#include "host/workers/Sandbox.h"

namespace kbx {

/// Whether the installed importers can be loaded, in workers, and whether there is one for
/// messages.
void examineImporters(std::vector<Finding>& findings);
/// Whether a small message comes through the whole road.
void examineImport(std::vector<Finding>& findings);
/// Whether the private folders can be made, and lie in memory where they should.
void examineFolders(std::vector<Finding>& findings);
/// Whether the user's own store can be read. That there is none yet is no fault.
void examineStore(std::vector<Finding>& findings);
/// Whether the user's preferences can be read.
void examinePreferences(std::vector<Finding>& findings);
/// Which protections of workers hold.
void examineSandbox(std::vector<Finding>& findings);
/// The same of protections that are known.
void examineProtections(const Protections& protections, std::vector<Finding>& findings);

/// Whether what is in a folder is lost with the power, and costs no disk.
bool isInMemory(const std::string& folder);

}  // namespace kbx
