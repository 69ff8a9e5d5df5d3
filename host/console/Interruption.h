// Interruption: the wish of the user or the system that the process should end.
#pragma once

namespace kbx {

/// While it lives, the first wish to end (SIGINT, SIGTERM, SIGHUP) is only noted, so that what is
/// in hand is finished and cleared away; a second one ends the process at once. Wishes that the
/// parent had switched off stay so. One at a time.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// While it lives, a wish ends the process at once: for waiting that may last for ever.
  class Allowed {
   public:
    Allowed();
    ~Allowed();
    Allowed(const Allowed&) = delete;
    Allowed& operator=(const Allowed&) = delete;
  };

  static bool isWished() noexcept;
  /// Takes the wish for granted: to end was all that the process waited for, and it has.
  static void forget() noexcept;
  /// Ends the process in the way of the wish, if there was one: whoever started it can tell.
  static void fulfil();
};

}  // namespace kbx
