#include "platform/preferences/NSUserDefaults.h"

#include "platform/objects/NSClass.h"
#include "platform/objects/NSException.h"
#include "platform/objects/NSNull.h"
#include "platform/objects/NSNumber.h"
#include "platform/preferences/VolatileDomains.h"
#include "platform/propertylists/NSPropertyListSerialization.h"
#include "platform/text/Format.h"

namespace kbx {

KBX_CLASS(NSUserDefaults)

namespace {

/// A copy that nobody can change, down to the leaves; absent when no property list can hold it.
Ref<NSDictionary> frozenCopy(NSDictionary* values) {
  constexpr auto kFormat = NSPropertyListBinaryFormat_v1_0;
  auto data = NSPropertyListSerialization::dataWithPropertyList(values, kFormat, 0, nullptr);
  if (!data) return nullptr;
  auto copy = NSPropertyListSerialization::propertyListWithData(data, NSPropertyListImmutable,
                                                                nullptr, nullptr);
  return cast<NSDictionary>(copy);
}

void requireName(NSString* name, const char* method) {
  if (!name) raiseInvalidArgument("-[NSUserDefaults " + std::string(method) + "]: nil name");
}

void requireValues(NSDictionary* values, const char* method) {
  if (!values) raiseInvalidArgument("-[NSUserDefaults " + std::string(method) + "]: nil domain");
}

[[noreturn]] void raiseNoList(NSObject* value, NSString* key) {
  raiseInvalidArgument(
      stringWithFormat("Attempt to insert non-property list object %@ for key %@"_ns, value, key)
          ->lossyUTF8());
}

/// Every object looks into the global domain, and the program's own is what is no suite.
bool isSuiteName(NSString* name) {
  return name->length() > 0 && !isEqual(name, applicationDomainName()) &&
         !isEqual(name, NSGlobalDomain());
}

/// The value as a T when it is one.
template <class T>
Ref<T> only(const Ref<NSObject>& value) {
  return cast<T>(value);
}

}  // namespace

NSUserDefaults* NSUserDefaults::standardUserDefaults() {
  static auto* const defaults = new NSUserDefaults(applicationDomainName());
  return defaults;
}

Ref<NSUserDefaults> NSUserDefaults::initWithSuiteName(NSString* name) {
  if (name && !isSuiteName(name)) return nullptr;
  return Ref<NSUserDefaults>::adopt(new NSUserDefaults(name ? name : applicationDomainName()));
}

void NSUserDefaults::setArguments(std::span<const std::string> arguments) {
  auto values = NSMutableDictionary::dictionary();
  for (std::size_t i = 0; i + 1 < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    if (argument.size() < 2 || argument[0] != '-' || argument[1] == '-') continue;
    auto key = NSString::stringWithLossyUTF8(std::string_view(argument).substr(1));
    values->setObjectForKey(NSString::stringWithLossyUTF8(arguments[++i]), key);
  }
  VolatileDomains::shared().replace(NSArgumentDomain(), values);
}

/// What there is to look into, the most important first.
std::vector<Ref<NSDictionary>> NSUserDefaults::domains() const {
  auto& stored = Preferences::current();
  auto& passing = VolatileDomains::shared();
  std::vector<Ref<NSDictionary>> all = {passing.domain(NSArgumentDomain()), stored.domain(_domain),
                                        stored.domain(NSGlobalDomain()),
                                        passing.domain(NSRegistrationDomain())};
  std::erase_if(all, [](const auto& domain) { return !domain; });
  return all;
}

Ref<NSObject> NSUserDefaults::objectForKey(NSString* key) const {
  for (const auto& domain : domains())
    if (NSObject* value = domain->objectForKey(key)) return value;
  return nullptr;
}

Ref<NSString> NSUserDefaults::stringForKey(NSString* key) const {
  auto value = objectForKey(key);
  if (auto* number = cast<NSNumber>(value)) return number->description();
  return only<NSString>(value);
}

Ref<NSArray> NSUserDefaults::arrayForKey(NSString* key) const {
  return only<NSArray>(objectForKey(key));
}

Ref<NSArray> NSUserDefaults::stringArrayForKey(NSString* key) const {
  auto array = arrayForKey(key);
  if (!array) return nullptr;
  for (const auto& element : *array)
    if (!cast<NSString>(element)) return nullptr;
  return array;
}

Ref<NSDictionary> NSUserDefaults::dictionaryForKey(NSString* key) const {
  return only<NSDictionary>(objectForKey(key));
}

Ref<NSData> NSUserDefaults::dataForKey(NSString* key) const {
  return only<NSData>(objectForKey(key));
}

bool NSUserDefaults::boolForKey(NSString* key) const {
  auto value = objectForKey(key);
  if (auto* number = cast<NSNumber>(value)) return number->boolValue();
  auto* text = cast<NSString>(value);
  return text && text->boolValue();
}

std::int64_t NSUserDefaults::integerForKey(NSString* key) const {
  auto value = objectForKey(key);
  if (auto* number = cast<NSNumber>(value)) return number->integerValue();
  auto* text = cast<NSString>(value);
  return text ? text->integerValue() : 0;
}

double NSUserDefaults::doubleForKey(NSString* key) const {
  auto value = objectForKey(key);
  if (auto* number = cast<NSNumber>(value)) return number->doubleValue();
  auto* text = cast<NSString>(value);
  return text ? text->doubleValue() : 0;
}

void NSUserDefaults::setObjectForKey(NSObject* value, NSString* key) {
  if (!key) raiseInvalidArgument("-[NSUserDefaults setObject:forKey:]: nil key");
  if (!value) return removeObjectForKey(key);
  auto entry = frozenCopy(NSDictionary::dictionaryWithPairs({{key, value}}));
  if (!entry) raiseNoList(value, key);
  Preferences::current().change(_domain, entry);
}

void NSUserDefaults::setBoolForKey(bool value, NSString* key) {
  setObjectForKey(NSNumber::numberWithBool(value), key);
}

void NSUserDefaults::setIntegerForKey(std::int64_t value, NSString* key) {
  setObjectForKey(NSNumber::numberWithInteger(value), key);
}

void NSUserDefaults::setDoubleForKey(double value, NSString* key) {
  setObjectForKey(NSNumber::numberWithDouble(value), key);
}

void NSUserDefaults::removeObjectForKey(NSString* key) {
  if (!key) raiseInvalidArgument("-[NSUserDefaults removeObjectForKey:]: nil key");
  auto removal = NSDictionary::dictionaryWithPairs({{key, NSNull::null()}});
  Preferences::current().change(_domain, removal);
}

void NSUserDefaults::registerDefaults(NSDictionary* entries) {
  if (entries) VolatileDomains::shared().merge(NSRegistrationDomain(), entries);
}

Ref<NSDictionary> NSUserDefaults::dictionaryRepresentation() const {
  auto all = NSMutableDictionary::dictionary();
  const auto found = domains();
  for (auto domain = found.rbegin(); domain != found.rend(); ++domain)
    all->addEntriesFromDictionary(*domain);
  return all->copy();
}

Ref<NSArray> NSUserDefaults::volatileDomainNames() const {
  return VolatileDomains::shared().names();
}

Ref<NSDictionary> NSUserDefaults::volatileDomainForName(NSString* name) const {
  return VolatileDomains::shared().domain(name);
}

void NSUserDefaults::setVolatileDomainForName(NSDictionary* values, NSString* name) {
  constexpr char kMethod[] = "setVolatileDomain:forName:";
  requireName(name, kMethod);
  requireValues(values, kMethod);
  if (!VolatileDomains::shared().add(name, values))
    raiseInvalidArgument("-[NSUserDefaults setVolatileDomain:forName:]: the domain " +
                         name->lossyUTF8() + " exists");
}

void NSUserDefaults::removeVolatileDomainForName(NSString* name) {
  requireName(name, "removeVolatileDomainForName:");
  VolatileDomains::shared().replace(name, nullptr);
}

Ref<NSDictionary> NSUserDefaults::persistentDomainForName(NSString* name) const {
  return Preferences::current().domain(name);
}

void NSUserDefaults::setPersistentDomainForName(NSDictionary* values, NSString* name) {
  constexpr char kMethod[] = "setPersistentDomain:forName:";
  requireName(name, kMethod);
  requireValues(values, kMethod);
  auto copy = frozenCopy(values);
  if (!copy) raiseNoList(values, name);
  Preferences::current().replace(name, copy);
}

void NSUserDefaults::removePersistentDomainForName(NSString* name) {
  requireName(name, "removePersistentDomainForName:");
  Preferences::current().replace(name, nullptr);
}

bool NSUserDefaults::synchronize() { return Preferences::current().synchronize(); }

}  // namespace kbx
