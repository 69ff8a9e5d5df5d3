// NSUserDefaults: what the user and the caller have chosen, by key.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "platform/objects/NSArray.h"
#include "platform/objects/NSData.h"
#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/preferences/Preferences.h"

namespace kbx {

/// Values by key, looked for in the argument domain, the object's own domain, the global domain and
/// what was registered, in this order. Safe from any thread.
///
/// The object's own and the global domain are kept by the Preferences service, so what is set here
/// is stored at once. The other two belong to the process and are the same for every object.
class KBX_PLATFORM NSUserDefaults final : public NSObject {
  KBX_OBJECT(NSUserDefaults, NSObject)
 public:
  /// The one object of the process for the program's own domain, never freed.
  /// (standardUserDefaults)
  static NSUserDefaults* standardUserDefaults();
  /// An object for another domain. (initWithSuiteName:)
  ///
  /// name  absent for the program's own domain; the name of that domain, the global domain and an
  ///       empty name give an absent result
  static Ref<NSUserDefaults> initWithSuiteName(NSString* name);

  /// Sets the argument domain: "-Key" and the argument behind it are an entry, whatever that
  /// argument begins with. Other arguments, "--long" ones too, are passed over.
  static void setArguments(std::span<const std::string> arguments);

  /// The value, or absent. (objectForKey:)
  Ref<NSObject> objectForKey(NSString* key) const;
  /// A text, or a number as text; absent for others. (stringForKey:)
  Ref<NSString> stringForKey(NSString* key) const;
  /// Absent when the value is of another class. (arrayForKey:)
  Ref<NSArray> arrayForKey(NSString* key) const;
  /// The array when it holds nothing but texts. (stringArrayForKey:)
  Ref<NSArray> stringArrayForKey(NSString* key) const;
  Ref<NSDictionary> dictionaryForKey(NSString* key) const;
  Ref<NSData> dataForKey(NSString* key) const;
  /// A number that is not zero, or a text that reads as true. (boolForKey:)
  bool boolForKey(NSString* key) const;
  /// A number, or the one at the start of a text; 0 for others. (integerForKey:, doubleForKey:)
  std::int64_t integerForKey(NSString* key) const;
  double doubleForKey(NSString* key) const;

  /// Sets a value in the object's own domain; absent removes it. (setObject:forKey:)
  ///
  /// Keeps an immutable copy. Raises NSInvalidArgumentException for an absent key and for a value
  /// that no property list can hold.
  void setObjectForKey(NSObject* value, NSString* key);
  void setBoolForKey(bool value, NSString* key);
  void setIntegerForKey(std::int64_t value, NSString* key);
  void setDoubleForKey(double value, NSString* key);
  void removeObjectForKey(NSString* key);
  /// Adds entries to the registration domain; they last as long as the process. (registerDefaults:)
  void registerDefaults(NSDictionary* entries);

  /// All entries that the object finds, in one dictionary. Never absent.
  /// (dictionaryRepresentation)
  Ref<NSDictionary> dictionaryRepresentation() const;

  /// The names of the volatile domains there are. (volatileDomainNames)
  Ref<NSArray> volatileDomainNames() const;
  /// Absent when there is none of that name. (volatileDomainForName:)
  Ref<NSDictionary> volatileDomainForName(NSString* name) const;
  /// Raises NSInvalidArgumentException when one of that name is there or an argument is absent.
  /// (setVolatileDomain:forName:)
  void setVolatileDomainForName(NSDictionary* values, NSString* name);
  void removeVolatileDomainForName(NSString* name);

  /// What is stored under a domain's own name; absent when nothing is.
  /// (persistentDomainForName:)
  Ref<NSDictionary> persistentDomainForName(NSString* name) const;
  /// Raises NSInvalidArgumentException when an argument is absent or no property list can hold the
  /// values. (setPersistentDomain:forName:)
  void setPersistentDomainForName(NSDictionary* values, NSString* name);
  void removePersistentDomainForName(NSString* name);

  /// Stores what could not be stored before, and looks again at what others have stored. Whether
  /// nothing is left to be stored. (synchronize)
  bool synchronize();

 private:
  explicit NSUserDefaults(NSString* domain) : _domain(domain) {}
  std::vector<Ref<NSDictionary>> domains() const;

  const Ref<NSString> _domain;
};

}  // namespace kbx
