// PlainLocale: numbers with a decimal point, whatever locale the host has chosen.
#pragma once

#include <locale.h>

namespace kbx {

/// The calling thread's C functions follow the C locale while this lives.
class PlainLocale {
 public:
  PlainLocale() : _before(uselocale(plain())) {}
  ~PlainLocale() { uselocale(_before); }
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;

 private:
  static locale_t plain() {
    static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
    return locale;
  }

  locale_t _before;
};

}  // namespace kbx
