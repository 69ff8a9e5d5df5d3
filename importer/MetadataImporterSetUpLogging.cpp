#include "KBXLogger.h"
#include "importer/MetadataImporterPlugin.h"
#include "platform/plugins/Bridge.h"

void MetadataImporterSetUpLogging(CFStringRef persistentDomainName) {
  kbx::KBXLogger::setUpWithPersistentDomainName(kbx::fromCF(persistentDomainName));
}
