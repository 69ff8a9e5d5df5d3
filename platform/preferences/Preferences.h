// Preferences: where the values of preference domains are kept.
#pragma once

#include "platform/objects/NSDictionary.h"
#include "platform/objects/NSString.h"
#include "platform/system/Service.h"

namespace kbx {

/// The names of domains. The argument and the registration domain live in memory only.
inline NSString* NSGlobalDomain() { return "NSGlobalDomain"_ns; }
inline NSString* NSArgumentDomain() { return "NSArgumentDomain"_ns; }
inline NSString* NSRegistrationDomain() { return "NSRegistrationDomain"_ns; }
/// The domain of the program itself, which its bundles share.
inline NSString* applicationDomainName() { return "ferncase"_ns; }

/// Where preferences are kept: one dictionary for each domain. Safe from any thread.
///
/// The system's keeps each domain in a property-list file of the user. A double of a test needs no
/// more than domain().
class KBX_PLATFORM Preferences {
 public:
  virtual ~Preferences();

  /// The domain's values; absent when nothing is stored for it.
  virtual Ref<NSDictionary> domain(NSString* name) = 0;
  /// Sets values and leaves the others as they are, also those that another process has set since.
  ///
  /// changes  values of property lists; the null marker removes its key
  ///
  /// False when they could not be stored. They are in force in this process even so, and the next
  /// change or synchronize() tries again.
  virtual bool change(NSString* name, NSDictionary* changes);
  /// Puts other values into the place of all; absent removes the domain. As change() otherwise.
  virtual bool replace(NSString* name, NSDictionary* values);
  /// Stores what is not stored yet and forgets what was read, so that the next question finds what
  /// other processes have stored. False when something could not be stored.
  virtual bool synchronize();

  KBX_SERVICE_INTERFACE(Preferences)
};

}  // namespace kbx
