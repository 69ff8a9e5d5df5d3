#include "platform/runtime/ValueType.h"

#include <gtest/gtest.h>

namespace kbx {
namespace {

using Kind = ValueType::Kind;

TEST(ValueType, EveryEncodingHasItsKindAndWidth) {
  struct Case {
    const char* encoding;
    Kind kind;
    std::size_t size;
  };
  for (auto [encoding, kind, size] : {Case{"v", Kind::Void, 0},
                                      {"c", Kind::Integer, 1},
                                      {"C", Kind::Integer, 1},
                                      {"B", Kind::Integer, 1},
                                      {"s", Kind::Integer, 2},
                                      {"S", Kind::Integer, 2},
                                      {"i", Kind::Integer, 4},
                                      {"I", Kind::Integer, 4},
                                      {"l", Kind::Integer, 4},
                                      {"L", Kind::Integer, 4},
                                      {"q", Kind::Integer, 8},
                                      {"Q", Kind::Integer, 8},
                                      {"f", Kind::Real, sizeof(float)},
                                      {"d", Kind::Real, sizeof(double)},
                                      {"D", Kind::Real, sizeof(long double)},
                                      {"@", Kind::Object, sizeof(void*)},
                                      {"@?", Kind::Object, sizeof(void*)},
                                      {"@\"NSString\"", Kind::Object, sizeof(void*)},
                                      {"#", Kind::Pointer, sizeof(void*)},
                                      {":", Kind::Pointer, sizeof(void*)},
                                      {"*", Kind::Pointer, sizeof(void*)},
                                      {"r*", Kind::Pointer, sizeof(void*)},
                                      {"^v", Kind::Pointer, sizeof(void*)},
                                      {"^^@", Kind::Pointer, sizeof(void*)},
                                      {"^?", Kind::Pointer, sizeof(void*)},
                                      {"^{__CFString=}", Kind::Pointer, sizeof(void*)},
                                      {"r^{__CFString=}", Kind::Pointer, sizeof(void*)},
                                      {"^{a={b=ii}(c=i)[3c]}", Kind::Pointer, sizeof(void*)},
                                      {"[16c]", Kind::Array, 16},
                                      {"[2{CGPoint=dd}]", Kind::Array, 32},
                                      {"[c]", Kind::Array, 0},
                                      {"{_NSRange=QQ}", Kind::Structure, 16},
                                      {"{CGPoint=dd}", Kind::Structure, 16},
                                      {"{CGSize=dd}", Kind::Structure, 16},
                                      {"{CGRect={CGPoint=dd}{CGSize=dd}}", Kind::Structure, 32},
                                      {"{mixed=cqs}", Kind::Structure, 24},
                                      {"{texts=[3c]i}", Kind::Structure, 8}}) {
    SCOPED_TRACE(encoding);
    std::string_view rest = encoding;
    auto type = takeValueType(rest);
    ASSERT_TRUE(type);
    EXPECT_EQ(type->kind, kind);
    EXPECT_EQ(type->size, size);
    EXPECT_EQ(type->encoding, encoding);
    EXPECT_EQ(rest, "");
  }
}

TEST(ValueType, TheNextTypeStaysWithoutTheFrameOffset) {
  std::string_view types = "c24@0:8";
  EXPECT_EQ(takeValueType(types)->encoding, "c");
  EXPECT_EQ(types, "@0:8");
  types = "^{a=}q";
  EXPECT_EQ(takeValueType(types)->encoding, "^{a=}");
  EXPECT_EQ(types, "q");
}

TEST(ValueType, WhatCannotBePassedIsAbsentAndStays) {
  for (const char* encoding : {"",
                               "?",
                               "r",
                               "x",
                               "(union=id)",
                               "b3",
                               "{",
                               "{}",
                               "{name}",
                               "{name=}",
                               "{name=v}",
                               "{name=i",
                               "{a=[0c]}",
                               "{a=[2v]}",
                               "{a=[2c}",
                               "{a=[1025c]}",
                               "{a=[1000c][25c]}",
                               "{a=[999999999c]}",
                               "[",
                               "[3",
                               "[3c",
                               "[3v]",
                               "[i]",
                               "[99999999999999999999c]",
                               "[9999999999c]",
                               "^",
                               "^{",
                               "^}",
                               "@\"NSString",
                               "{a=(u=i)}",
                               "{a=b3}"}) {
    std::string_view rest = encoding;
    EXPECT_FALSE(takeValueType(rest)) << encoding;
    EXPECT_EQ(rest, encoding);
  }
}

TEST(ValueType, StructuresMayBeNestedSixteenDeepOnly) {
  const auto nested = [](int depth) {
    std::string text = "i";
    for (int i = 0; i < depth; ++i) text = "{a=" + text + "}";
    return text;
  };
  const std::string deep = nested(15), tooDeep = nested(16), endless(100000, '{');
  std::string_view rest = deep;
  EXPECT_TRUE(takeValueType(rest));
  rest = tooDeep;
  EXPECT_FALSE(takeValueType(rest));
  rest = endless;
  EXPECT_FALSE(takeValueType(rest));
}

}  // namespace
}  // namespace kbx
