#include "mail/MessageState.h"

#include <gtest/gtest.h>

#include "platform/objects/NSNumber.h"
#include "tests/mail/Messages.h"

namespace kbx {
namespace {

MessageState stateOf(std::uint64_t flags, std::string_view header = "") {
  auto properties =
      NSDictionary::dictionaryWithPairs({{"flags"_ns, NSNumber::numberWithUnsignedInteger(flags)}});
  return messageState(properties, HeaderFields(header));
}

MessageState stateOf(std::string_view header) {
  return messageState(NSDictionary::dictionary(), HeaderFields(header));
}

TEST(MessageState, IsUnknownWithoutFlagsAndFields) {
  const MessageState state = stateOf("");
  EXPECT_FALSE(state.isRead || state.isRepliedTo || state.isFlagged || state.isLikelyJunk ||
               state.priority);
}

TEST(MessageState, EachFlagHasItsBit) {
  EXPECT_EQ(stateOf(1u << 0).isRead, true);
  EXPECT_EQ(stateOf(1u << 2).isRepliedTo, true);
  EXPECT_EQ(stateOf(1u << 4).isFlagged, true);
  EXPECT_EQ(stateOf(1u << 24).isLikelyJunk, true);
  EXPECT_EQ(stateOf(1u << 25).isLikelyJunk, false);
  EXPECT_EQ(stateOf(2u << 16).priority, 2);
  const MessageState others = stateOf(~((1ull << 0) | (1ull << 2) | (1ull << 4)));
  EXPECT_EQ(others.isRead, false);
  EXPECT_EQ(others.isRepliedTo, false);
  EXPECT_EQ(others.isFlagged, false);
}

TEST(MessageState, TheWordHas64Bits) {
  EXPECT_EQ(stateOf((1ull << 63) | 1).isRead, true);
  EXPECT_EQ(stateOf(1ull << 32).isRead, false);
}

TEST(MessageState, JunkIsUnknownWhereNoBitSaysSo) {
  EXPECT_EQ(stateOf(1).isLikelyJunk, std::nullopt);
  EXPECT_EQ(stateOf(1, "X-Spam-Flag: YES\n").isLikelyJunk, true);
  EXPECT_EQ(stateOf(1u << 25, "X-Spam-Flag: YES\n").isLikelyJunk, false);
  EXPECT_EQ(stateOf("X-Spam-Status: No, score=1\n").isLikelyJunk, false);
}

TEST(MessageState, PriorityIsANumberOrAWord) {
  EXPECT_EQ(stateOf("X-Priority: 2 (High)\n").priority, 2);
  EXPECT_EQ(stateOf("X-Priority: Highest\n").priority, 1);
  EXPECT_EQ(stateOf("Importance: low\n").priority, 5);
  EXPECT_EQ(stateOf("Priority: urgent\n").priority, 1);
  EXPECT_EQ(stateOf("X-MSMail-Priority: Normal\n").priority, 3);
  EXPECT_EQ(stateOf("Importance: who knows\n").priority, std::nullopt);
  EXPECT_EQ(stateOf(2u << 16, "X-Priority: 5\n").priority, 5);
}

TEST(MessageState, FlagsMayBeText) {
  auto properties = NSDictionary::dictionaryWithPairs({{"flags"_ns, "1"_ns}});
  EXPECT_EQ(messageState(properties, HeaderFields()).isRead, true);
  properties = NSDictionary::dictionaryWithPairs({{"flags"_ns, "none"_ns}});
  EXPECT_EQ(messageState(properties, HeaderFields()).isRead, std::nullopt);
}

}  // namespace
}  // namespace kbx
