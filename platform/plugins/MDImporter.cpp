#include "platform/plugins/MDImporter.h"

#include "platform/plugins/Bridge.h"

using kbx::operator""_ns;

const CFStringRef kMDItemTextContent = kbx::toCF("kMDItemTextContent"_ns);
const CFStringRef kMDItemHTMLContent = kbx::toCF("kMDItemHTMLContent"_ns);
