#include "platform/plugins/PlugInDeclaration.h"

#include <algorithm>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSError.h"
#include "platform/propertylists/NSPropertyListSerialization.h"

namespace kbx {
namespace {

Ref<NSObject> readPropertyList(NSURL* file, Ref<NSError>* error) {
  Ref<NSData> data = NSData::dataWithContentsOfURL(file, NSDataReadingNone, error);
  if (!data) return nullptr;
  return NSPropertyListSerialization::propertyListWithData(data, NSPropertyListImmutable, nullptr,
                                                           error);
}

std::string executableNameOf(NSDictionary* list) {
  auto* text = cast<NSString>(list->objectForKey("CFBundleExecutable"_ns));
  std::string name = text ? text->UTF8String().value_or("") : "";
  // A name, not a way out of the bundle.
  const bool isName = name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
  return isName ? name : "";
}

/// Calls visit(key as a UUID, value as a T) for each entry of that form in a part of the list.
template <class T, class Visit>
void visitEntries(NSDictionary* list, NSString* key, Visit&& visit) {
  auto* part = cast<NSDictionary>(list->objectForKey(key));
  if (!part) return;
  for (const auto& entry : *part) {
    auto identifier = NSUUID::UUIDWithString(cast<NSString>(entry.key));
    auto* value = cast<T>(entry.value);
    if (identifier && value) visit(std::move(identifier), value);
  }
}

void addType(PlugInDeclaration& declaration, Ref<NSUUID> identifier, NSArray* factories) {
  PlugInDeclaration::Type type{std::move(identifier), {}};
  for (const auto& text : *factories) {
    auto factory = NSUUID::UUIDWithString(cast<NSString>(text));
    if (factory && declaration.factory(factory)) type.factories.push_back(std::move(factory));
  }
  declaration.types.push_back(std::move(type));
}

}  // namespace

const PlugInDeclaration::Factory* PlugInDeclaration::factory(NSUUID* identifier) const {
  auto found = std::ranges::find_if(
      factories, [=](const Factory& factory) { return isSame(factory.identifier, identifier); });
  return found == factories.end() ? nullptr : &*found;
}

std::vector<Ref<NSUUID>> PlugInDeclaration::factoriesForType(NSUUID* type) const {
  for (const Type& each : types)
    if (isSame(each.identifier, type)) return each.factories;
  return {};
}

PlugInDeclaration readPlugInDeclaration(NSURL* bundle, std::string* reason) {
  Ref<NSURL> file = bundle->URLByAppendingPathComponent("Contents/Info.plist"_ns);
  Ref<NSError> error;
  Ref<NSObject> object = readPropertyList(file, &error);
  auto* list = cast<NSDictionary>(object);
  if (!list) {
    *reason = "Contents/Info.plist: " +
              (object ? "not a dictionary" : error->localizedDescription()->lossyUTF8());
    return {};
  }
  PlugInDeclaration declaration;
  declaration.executable = executableNameOf(list);
  visitEntries<NSString>(list, "CFPlugInFactories"_ns, [&](Ref<NSUUID> factory, NSString* name) {
    declaration.factories.push_back({std::move(factory), name->lossyUTF8()});
  });
  visitEntries<NSArray>(list, "CFPlugInTypes"_ns, [&](Ref<NSUUID> type, NSArray* factories) {
    addType(declaration, std::move(type), factories);
  });
  return declaration;
}

}  // namespace kbx
