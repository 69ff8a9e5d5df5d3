#include "host/console/Interruption.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace kbx {
namespace {

// In processes of their own, because a wish stays.
void expect(bool isTrue) {
  if (!isTrue) std::_Exit(1);
}

TEST(InterruptionDeathTest, TheFirstWishIsNotedAndFulfilledInTheEnd) {
  for (int signal : {SIGINT, SIGTERM, SIGHUP})
    EXPECT_EXIT(
        {
          {
            const Interruption noted;
            expect(!Interruption::isWished());
            std::raise(signal);
            expect(Interruption::isWished());
          }
          Interruption::fulfil();
          std::_Exit(2);
        },
        testing::KilledBySignal(signal), "");
}

TEST(InterruptionDeathTest, TheSecondWishEndsTheProcess) {
  EXPECT_EXIT(
      {
        const Interruption noted;
        std::raise(SIGINT);
        std::raise(SIGINT);
        std::_Exit(2);
      },
      testing::KilledBySignal(SIGINT), "");
}

TEST(InterruptionDeathTest, WhileItIsAllowedAWishEndsTheProcess) {
  EXPECT_EXIT(
      {
        const Interruption noted;
        { const Interruption::Allowed waiting; }
        std::raise(SIGTERM);  // noted again
        expect(Interruption::isWished());
        const Interruption::Allowed waiting;
        std::raise(SIGTERM);
        std::_Exit(2);
      },
      testing::KilledBySignal(SIGTERM), "");
}

TEST(InterruptionDeathTest, WhatTheParentSwitchedOffStaysSo) {
  EXPECT_EXIT(
      {
        std::signal(SIGHUP, SIG_IGN);
        const Interruption noted;
        std::raise(SIGHUP);
        expect(!Interruption::isWished());
        Interruption::fulfil();
        std::_Exit(0);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace kbx
