#include "platform/objects/NSException.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <type_traits>

#include "platform/objects/NSClass.h"
#include "platform/objects/NSNumber.h"
#include "tests/support/Text.h"

namespace kbx {
namespace {

static_assert(std::is_nothrow_copy_constructible_v<Raised>, "an exception in flight is copied");

/// A subclass that adds to the reason.
class PlacedException final : public NSException {
  KBX_OBJECT(PlacedException, NSException)
 public:
  static Ref<PlacedException> make() { return Ref<PlacedException>::adopt(new PlacedException); }
  Ref<NSString> reason() const override {
    return NSException::reason()->stringByAppendingString(" at home"_ns);
  }

 private:
  PlacedException() : NSException("Placed"_ns, "Reason"_ns, nullptr) {}
};
KBX_CLASS(PlacedException)

Ref<NSException> raised(void (*block)()) {
  try {
    block();
  } catch (const Raised& raised) {
    return raised.exception();
  }
  return nullptr;
}

TEST(NSException, EveryPartMayBeAbsent) {
  auto full = NSException::exceptionWithName("N"_ns, "R"_ns,
                                             NSDictionary::dictionaryWithPairs({{"k"_ns, "v"_ns}}));
  EXPECT_EQ(text(full->name()), "N");
  EXPECT_EQ(text(full->reason()), "R");
  EXPECT_EQ(text(full->userInfo()->objectForKey("k"_ns)), "v");
  auto empty = NSException::exceptionWithName(nullptr, nullptr, nullptr);
  EXPECT_EQ(empty->name(), nullptr);
  EXPECT_EQ(empty->reason(), nullptr);
  EXPECT_EQ(empty->userInfo(), nullptr);
}

TEST(NSException, TheDescriptionIsTheReasonOrElseTheName) {
  EXPECT_EQ(text(NSException::exceptionWithName("N"_ns, "R"_ns, nullptr)), "R");
  EXPECT_EQ(text(NSException::exceptionWithName("N"_ns, nullptr, nullptr)), "N");
  EXPECT_EQ(text(NSException::exceptionWithName(nullptr, nullptr, nullptr)), "(null)");
  EXPECT_EQ(text(PlacedException::make()), "Reason at home");
}

TEST(NSException, AMutableUserInfoIsCopied) {
  auto info = NSMutableDictionary::dictionary();
  auto one = NSException::exceptionWithName("N"_ns, nullptr, info);
  info->setObjectForKey("v"_ns, "k"_ns);
  EXPECT_EQ(one->userInfo()->count(), 0U);
}

TEST(Raised, CarriesTheVeryException) {
  auto one = PlacedException::make();
  try {
    one->raise();
  } catch (const Raised& raised) {
    EXPECT_TRUE(isSame(raised.exception(), one));
    EXPECT_NE(cast<PlacedException>(raised.exception()), nullptr);
    const Raised copy(raised);
    EXPECT_TRUE(isSame(copy.exception(), one));
    EXPECT_STREQ(copy.what(), "Placed: Reason at home");
    EXPECT_EQ(copy.what(), raised.what()) << "copies share the text";
  }
}

TEST(Raised, IsAStandardExceptionToHandlersThatKnowNoObjects) {
  for (auto [name, reason, what] : std::vector<std::array<const char*, 3>>{
           {"N", "R", "N: R"}, {"N", nullptr, "N: N"}, {nullptr, nullptr, "(null): (null)"}}) {
    try {
      NSException::exceptionWithName(NSString::stringWithUTF8String(name),
                                     NSString::stringWithUTF8String(reason), nullptr)
          ->raise();
    } catch (const std::exception& exception) {
      EXPECT_STREQ(exception.what(), what);
    }
  }
}

TEST(Raised, OtherExceptionsPassItsHandlers) {
  auto guarded = [](auto block) {
    try {
      block();
    } catch (const Raised&) {
    }
  };
  EXPECT_THROW(guarded([] { throw std::runtime_error("foreign"); }), std::runtime_error);
  EXPECT_NO_THROW(guarded([] { raiseRange("caught"); }));
}

TEST(NSException, TheUsualOnesHaveTheirNames) {
  auto argument = raised([] { raiseInvalidArgument("why"); });
  EXPECT_EQ(text(argument->name()), "NSInvalidArgumentException");
  EXPECT_EQ(text(argument->reason()), "why");
  auto range = raised([] { raiseRange("bad \xFF byte"); });
  EXPECT_EQ(text(range->name()), "NSRangeException");
  EXPECT_EQ(text(range->reason()), "bad \uFFFD byte");
}

TEST(NSException, AnUnknownSelectorIsAnInvalidArgument) {
  auto instance =
      raised([] { raiseUnrecognizedSelector(NSNumber::numberWithInteger(1), "length"); });
  EXPECT_EQ(text(instance->name()), "NSInvalidArgumentException");
  EXPECT_TRUE(instance->reason()->hasPrefix(
      "-[NSNumber length]: unrecognized selector sent to instance 0x"_ns));
  auto ofClass = raised([] { raiseUnrecognizedSelector(NSNumber::classObject(), "length"); });
  EXPECT_TRUE(ofClass->reason()->hasPrefix(
      "+[NSNumber length]: unrecognized selector sent to class 0x"_ns));
  auto unnamed = raised([] { raiseUnrecognizedSelector("a"_ns, nullptr); });
  EXPECT_TRUE(unnamed->reason()->hasPrefix("-[NSString (null)]: "_ns));
}

}  // namespace
}  // namespace kbx
