#include "host/workers/Frames.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kbx {
namespace {

void feed(FrameReader& reader, std::string_view bytes) {
  std::ranges::copy(bytes, reader.room(bytes.size()).begin());
  reader.added(bytes.size());
}

TEST(Frames, AFrameComesOutWholeHoweverItsBytesCome) {
  std::string bytes;
  const std::string large(100'000, 'x');
  appendFrame(bytes, FrameKind::Import, 1, "first");
  appendFrame(bytes, FrameKind::Log, 2, "");
  appendFrame(bytes, FrameKind::Attributes, UINT64_MAX, large);
  for (std::size_t piece : {std::size_t{1}, std::size_t{7}, std::size_t{4096}, bytes.size()}) {
    SCOPED_TRACE(piece);
    FrameReader reader;
    std::size_t count = 0;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
      feed(reader, std::string_view(bytes).substr(at, piece));
      while (auto frame = reader.next()) {
        ++count;
        EXPECT_EQ(frame->kind, count == 1   ? FrameKind::Import
                               : count == 2 ? FrameKind::Log
                                            : FrameKind::Attributes);
        EXPECT_EQ(frame->bytes, count == 1 ? "first" : count == 2 ? "" : large);
        EXPECT_EQ(frame->number, count == 3 ? UINT64_MAX : count);
      }
    }
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(reader.claimedLength(), 0u);
  }
}

TEST(Frames, WhatAHeadClaimsIsKnownBeforeItComes) {
  std::string bytes;
  appendFrame(bytes, FrameKind::Attributes, 1, std::string(500, 'x'));
  FrameReader reader;
  feed(reader, std::string_view(bytes).substr(0, 23));
  EXPECT_EQ(reader.claimedLength(), 0u);
  feed(reader, std::string_view(bytes).substr(23, 10));
  EXPECT_EQ(reader.claimedLength(), 500u);
  EXPECT_FALSE(reader.next());
}

TEST(Frames, TwoTextsArePartedByANul) {
  auto [path, copy] = textPairIn(bytesOfTextPair("/a b", "/c"));
  EXPECT_EQ(path, "/a b");
  EXPECT_EQ(copy, "/c");
  EXPECT_EQ(textPairIn(bytesOfTextPair("/a", "")).second, "");
  EXPECT_EQ(textPairIn("/a").first, "/a");
  EXPECT_EQ(textPairIn("").first, "");
}

}  // namespace
}  // namespace kbx
