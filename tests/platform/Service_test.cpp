#include "platform/system/Service.h"

#include <gtest/gtest.h>

#include <string>

namespace kbx {
namespace {

class Greeter {
 public:
  virtual ~Greeter() = default;
  virtual std::string greeting() const = 0;
  KBX_SERVICE_INTERFACE(Greeter)
};

class SystemGreeter final : public Greeter {
  std::string greeting() const override { return "system"; }
};

KBX_SERVICE(Greeter, SystemGreeter)

class FakeGreeter final : public Greeter {
 public:
  explicit FakeGreeter(std::string greeting) : _greeting(std::move(greeting)) {}
  std::string greeting() const override { return _greeting; }

 private:
  std::string _greeting;
};

std::string answer() { return Greeter::current().greeting(); }

TEST(Service, TheSystemAnswersUnlessSomebodyElseIsInstalled) {
  EXPECT_EQ(answer(), "system");
  EXPECT_EQ(&Greeter::current(), &Greeter::current());
  FakeGreeter outer("outer"), inner("inner");
  {
    ScopedService<Greeter> one(outer);
    EXPECT_EQ(answer(), "outer");
    {
      ScopedService<Greeter> two(inner);
      EXPECT_EQ(answer(), "inner");
    }
    EXPECT_EQ(answer(), "outer");
  }
  EXPECT_EQ(answer(), "system");
}

TEST(Service, InstallingAnswersTheOneBefore) {
  FakeGreeter fake("fake");
  EXPECT_EQ(Greeter::install(&fake), nullptr);
  EXPECT_EQ(Greeter::install(nullptr), &fake);
  EXPECT_EQ(answer(), "system");
}

}  // namespace
}  // namespace kbx
