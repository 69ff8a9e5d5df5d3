#include "platform/plugins/PlugInLoader.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "platform/files/FileSystem.h"
#include "platform/plugins/Bridge.h"
#include "platform/system/SystemMessages.h"
#include "platform/system/SystemRoot.h"

namespace kbx {
namespace {

/// Where the bundle really lies; without links when it is there at all.
std::string locationOf(NSURL* bundle) {
  const std::string path = pathBelowSystemRoot(bundle->fileSystemRepresentation());
  std::error_code failure;
  auto real = std::filesystem::canonical(path, failure);
  return failure ? path : real.string();
}

/// Why the path is no folder; empty when it is one.
std::string whyNoFolder(const std::string& path) {
  FileStatus status;
  const int result = FileSystem::current().statusOfPath(path, &status);
  if (result < 0) return systemMessage(-result) + ": " + path;
  return status.kind == FileStatus::Kind::Directory ? "" : "not a folder: " + path;
}

std::string text(NSUUID* uuid) { return uuid->UUIDString()->lossyUTF8(); }

void* makeInstance(PlugIn* plugIn, NSUUID* factory, NSUUID* type, std::string* reason) {
  auto serving = plugIn->declaration().factoriesForType(type);
  if (std::ranges::none_of(serving, [=](auto& each) { return isSame(each, factory); })) {
    *reason = "factory " + text(factory) + " does not serve type " + text(type);
    return nullptr;
  }
  const std::string& name = plugIn->declaration().factory(factory)->function;
  auto function = reinterpret_cast<CFPlugInFactoryFunction>(plugIn->function(name, reason));
  if (!function) return nullptr;
  void* instance = function(kCFAllocatorDefault, toCF(type));
  if (!instance) *reason = "the factory function " + name + " made no instance";
  return instance;
}

}  // namespace

Ref<PlugIn> PlugInLoader::create(NSURL* bundle) {
  if (!bundle) return nullptr;
  const std::string path = locationOf(bundle);
  if (auto known = find(path)) return known;
  std::string reason = whyNoFolder(path);
  Ref<PlugIn> entered;
  if (reason.empty()) {
    unloadScheduled();
    Ref<NSURL> folder = NSURL::fileURLWithFileSystemRepresentation(path, true);
    auto declaration = readPlugInDeclaration(folder, &reason);
    auto made = Ref<PlugIn>::adopt(new PlugIn(*this, path, std::move(declaration)));
    entered = enter(made, &reason);
  }
  _reasons.set(path, std::move(reason));
  return entered;
}

Ref<PlugIn> PlugInLoader::find(const std::string& path) {
  std::lock_guard held(_lock);
  return findLocked(path);
}

Ref<PlugIn> PlugInLoader::findLocked(const std::string& path) {
  auto found = _plugIns.find(path);
  if (found == _plugIns.end() || !found->second->retainIfAlive()) return nullptr;
  return Ref<PlugIn>::adopt(found->second);
}

Ref<PlugIn> PlugInLoader::enter(PlugIn* made, std::string* reason) {
  Ref<PlugIn> other;  // declared before the lock is taken, so that it goes after that
  std::lock_guard held(_lock);
  if (auto known = findLocked(made->path())) return known;
  for (const auto& factory : made->declaration().factories) {
    auto found = _factories.find(factory.identifier);
    if (found == _factories.end() || !found->second.plugIn->retainIfAlive()) continue;
    other = Ref<PlugIn>::adopt(found->second.plugIn);
    *reason = "factory " + text(factory.identifier) + " is registered by " + other->path();
    return nullptr;
  }
  _plugIns[made->path()] = made;
  for (const auto& factory : made->declaration().factories)
    _factories[factory.identifier] = Factory{made, 0, nullptr};
  return made;
}

void PlugInLoader::forget(PlugIn* plugIn) {
  std::lock_guard held(_lock);
  std::erase_if(_plugIns, [=](auto& entry) { return entry.second == plugIn; });
  std::erase_if(_factories, [=](auto& entry) { return entry.second.plugIn == plugIn; });
}

bool PlugInLoader::isServed(NSUUID* type) {
  std::lock_guard held(_lock);
  return std::ranges::any_of(_plugIns, [=](auto& entry) {
    return !entry.second->declaration().factoriesForType(type).empty();
  });
}

Ref<NSArray> PlugInLoader::findFactories(NSUUID* type, PlugIn* plugIn) {
  if (!type || !plugIn || !isServed(type)) return nullptr;
  auto factories = plugIn->declaration().factoriesForType(type);
  return NSArray::arrayWithElements({factories.begin(), factories.end()});
}

Ref<PlugIn> PlugInLoader::plugInOfFactory(NSUUID* factory) {
  std::lock_guard held(_lock);
  auto found = _factories.find(factory);
  if (found == _factories.end() || !found->second.plugIn->retainIfAlive()) return nullptr;
  return Ref<PlugIn>::adopt(found->second.plugIn);
}

void* PlugInLoader::createInstance(NSUUID* factory, NSUUID* type) {
  if (!factory || !type) return nullptr;
  Ref<PlugIn> plugIn = plugInOfFactory(factory);
  if (!plugIn) return nullptr;
  std::string reason;
  void* instance = makeInstance(plugIn, factory, type, &reason);
  _reasons.set(plugIn->path(), std::move(reason));
  return instance;
}

void PlugInLoader::addInstance(NSUUID* factory) {
  std::lock_guard held(_lock);
  auto found = _factories.find(factory);
  if (found == _factories.end()) return;
  Factory& record = found->second;
  if (record.instances == 0) {
    if (!record.plugIn->retainIfAlive()) return;
    record.kept = Ref<PlugIn>::adopt(record.plugIn);
  }
  ++record.instances;
}

void PlugInLoader::removeInstance(NSUUID* factory) {
  std::lock_guard held(_lock);
  auto found = _factories.find(factory);
  if (found == _factories.end() || found->second.instances == 0) return;
  Factory& record = found->second;
  if (--record.instances > 0) return;
  _scheduled.try_emplace(record.plugIn, record.kept);
  record.kept = nullptr;  // not its last reference: the schedule holds another
}

void PlugInLoader::unloadScheduled() {
  decltype(_scheduled) ended;  // goes after the lock
  std::lock_guard held(_lock);
  ended.swap(_scheduled);
}

std::string PlugInLoader::failureReason(NSURL* bundle) {
  return bundle ? _reasons.get(locationOf(bundle)) : "";
}

}  // namespace kbx
