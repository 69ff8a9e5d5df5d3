#include "Assertions.h"

#include <cstdio>
#include <cstdlib>
#include <string>

#include "KBXFunctions.h"
#include "platform/objects/NSAssertionHandler.h"

namespace kbx {
namespace {

SEL selectorOf(const Site& site) { return site.selector ? SEL(site.selector) : SEL(); }

std::string functionOf(const Site& site) {
  if (site.function) return site.function;
  if (!site.object || !site.selector) return "<Unknown Function>";
  auto* receiver = cast<NSClass>(site.object);
  const std::string& name = receiver ? receiver->name() : site.object->objectClass()->name();
  return (receiver ? "+[" : "-[") + name + " " + site.selector + "]";
}

}  // namespace

void failAssertion(const Site& site, NSString* message) {
  KBXFunctions::assertionFailedForFile(site.file, site.line, site.object, selectorOf(site), "%@"_ns,
                                       message);
}

void stopAfterAssertion(const Site& site, const char* condition) {
  std::fprintf(stderr, "Assertion failed: %s, function %s, file %s, line %lu.\n", condition,
               functionOf(site).c_str(), site.file, site.line);
  std::abort();
}

void failParameterAssertion(const Site& site, const char* condition) {
  const auto line = static_cast<std::int64_t>(site.line);
  if (site.selector)
    failParameterInMethod(SEL(site.selector), site.object, site.file, line, condition);
  failParameterInFunction(site.function, site.file, line, condition);
}

}  // namespace kbx
