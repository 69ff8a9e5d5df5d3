#include "host/workers/Frames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

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

TEST(Frames, ALongFrameComesWholeInPiecesAndOthersBehindIt) {
  const std::string content(5000001, 'x');
  std::string stream;
  appendFrameHead(stream, FrameKind::Attributes, 7, content.size());
  stream += content;
  appendFrame(stream, FrameKind::Failure, 8, "short");
  FrameReader reader;
  std::vector<std::pair<std::uint64_t, std::string>> frames;
  for (std::string_view rest = stream; !rest.empty();) {
    const auto room = reader.room(1 << 16);
    const std::size_t count = std::min(room.size(), rest.size());
    std::ranges::copy(rest.substr(0, count), room.begin());
    rest.remove_prefix(count);
    reader.added(count);
    while (auto frame = reader.next()) frames.emplace_back(frame->number, frame->bytes);
  }
  ASSERT_EQ(frames.size(), 2u);
  EXPECT_EQ(frames[0], (std::pair{std::uint64_t{7}, content}));
  EXPECT_EQ(frames[1], (std::pair{std::uint64_t{8}, std::string("short")}));
}

}  // namespace
}  // namespace kbx
