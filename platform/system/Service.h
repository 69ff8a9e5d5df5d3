// Service: how a question to the outside world is answered by the system or by a test's double.
#pragma once

#include <atomic>

#include "platform/Export.h"

namespace kbx {

/// Installs another answerer of a service while it lives, and puts back the one before.
///
/// Interface has `static Interface* install(Interface*)`. For tests and for hosts at start-up: what
/// other threads are asking of the old one must have ended before it goes away.
template <class Interface>
class ScopedService {
 public:
  explicit ScopedService(Interface& service) : _before(Interface::install(&service)) {}
  ~ScopedService() { Interface::install(_before); }
  ScopedService(const ScopedService&) = delete;
  ScopedService& operator=(const ScopedService&) = delete;

 private:
  Interface* _before;
};

}  // namespace kbx

/// Declares the two entry points of a service in its class body. current() is the answerer in
/// force: the system's unless another is installed. install() makes `service` the answerer
/// (nullptr: the system's) and answers the one before; it is not owned.
#define KBX_SERVICE_INTERFACE(Interface) \
  static Interface& current();           \
  static Interface* install(Interface* service);

/// Defines them. `System` is the default answerer's class; its one object is never destroyed.
/// Lives in a .cpp file of the platform library, so that a process has one slot.
#define KBX_SERVICE(Interface, System)                                        \
  namespace {                                                                 \
  std::atomic<Interface*> installed##Interface{nullptr};                      \
  }                                                                           \
  Interface& Interface::current() {                                           \
    static auto* const system = new System;                                   \
    Interface* other = installed##Interface.load(std::memory_order_acquire);  \
    return other ? *other : *system;                                          \
  }                                                                           \
  Interface* Interface::install(Interface* service) {                         \
    return installed##Interface.exchange(service, std::memory_order_acq_rel); \
  }
