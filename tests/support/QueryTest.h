// QueryTest: what a parser makes of a query, as lines that a test can name.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "host/search/Query.h"
#include "host/search/QueryFault.h"
#include "tests/support/FakeClock.h"
#include "tests/support/FakeLocalTime.h"

namespace kbx {

/// On Friday, 2024-05-17, 13:30:00, in a zone without summers that is that of UTC.
template <QueryNode (*kParse)(std::string_view)>
class QueryTest : public testing::Test {
 protected:
  static std::string tree(std::string_view text) { return descriptionOf(kParse(text)); }
  /// "REASON @BEGIN+LENGTH -> CORRECTION"
  static std::string fault(std::string_view text) {
    try {
      return "no fault: " + tree(text);
    } catch (const QueryFault& fault) {
      return std::string(fault.what()) + " @" + std::to_string(fault.begin) + "+" +
             std::to_string(fault.length) + " -> " + fault.correction;
    }
  }

  FakeClock _clock{1715952600};
  FakeLocalTime _zone;
  ScopedService<Clock> _installedClock{_clock};
  ScopedService<LocalTime> _installedZone{_zone};
};

}  // namespace kbx
