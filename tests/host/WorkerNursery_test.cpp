#include "host/workers/WorkerNursery.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <memory>
#include <string>

#include "host/workers/Stream.h"

namespace kbx {
namespace {

std::string receive(int stream) {
  char bytes[64];
  return std::string(bytes, receiveSome(stream, bytes));
}

TEST(WorkerNursery, AWorkerHasItsPlaceAndAStream) {
  WorkerNursery nursery(
      [](unsigned place, int stream) {
        sendAll(stream, std::to_string(place) + " " + receive(stream));
      },
      false);
  const auto first = nursery.start(0), second = nursery.start(7);
  ASSERT_TRUE(first && second);
  sendAll(second->stream, "b");
  EXPECT_EQ(receive(second->stream), "7 b");
  sendAll(first->stream, "a");
  EXPECT_EQ(receive(first->stream), "0 a");
  EXPECT_EQ(receive(first->stream), "") << "the stream ends with the worker";
  for (const auto& worker : {*first, *second}) closeStream(worker.stream);
}

TEST(WorkerNursery, HowAWorkerEndedIsTold) {
  WorkerNursery nursery(
      [](unsigned place, int stream) {
        (void)receive(stream);
        if (place == 1) ::_exit(5);
        if (place == 2) std::raise(SIGUSR1);
        if (place == 3) throw 1;
      },
      false);
  struct Case {
    unsigned place;
    int status;
  };
  for (auto [place, status] : {Case{0, W_EXITCODE(0, 0)},
                               {1, W_EXITCODE(5, 0)},
                               {2, W_EXITCODE(0, SIGUSR1)},
                               {3, W_EXITCODE(1, 0)}}) {
    const auto worker = nursery.start(place);
    ASSERT_TRUE(worker);
    sendAll(worker->stream, "go");
    EXPECT_EQ(receive(worker->stream), "");
    EXPECT_EQ(nursery.end(worker->worker), status);
    closeStream(worker->stream);
  }
}

TEST(WorkerNursery, AWorkerThatDoesNotEndIsKilled) {
  WorkerNursery nursery([](unsigned, int) { ::pause(); }, false);
  const auto worker = nursery.start(0);
  ASSERT_TRUE(worker);
  EXPECT_EQ(nursery.end(worker->worker), W_EXITCODE(0, SIGKILL));
  closeStream(worker->stream);
}

TEST(WorkerNursery, WorkersEndWithTheNursery) {
  int stream;
  {
    WorkerNursery nursery([](unsigned, int other) { sendAll(other, "here"), ::pause(); }, false);
    stream = nursery.start(0)->stream;
    EXPECT_EQ(receive(stream), "here");
  }
  EXPECT_EQ(receive(stream), "");
  closeStream(stream);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no child is left";
}

TEST(WorkerNursery, SignalsOfTheTerminalDoNotReachWorkers) {
  WorkerNursery nursery(
      [](unsigned, int stream) {
        for (int signal : {SIGINT, SIGTERM, SIGHUP}) std::raise(signal);
        sendAll(stream, "alive");
      },
      false);
  const auto worker = nursery.start(0);
  EXPECT_EQ(receive(worker->stream), "alive");
  closeStream(worker->stream);
}

TEST(WorkerNursery, FilesOfTheProcessStayItsOwn) {
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  WorkerNursery nursery(
      [ends](unsigned, int stream) {
        const bool isClosed = ::write(ends[1], "x", 1) < 0 && errno == EBADF;
        sendAll(stream, isClosed ? "closed" : "open");
      },
      false);
  const auto worker = nursery.start(0);
  EXPECT_EQ(receive(worker->stream), "closed");
  closeStream(worker->stream);
  for (int end : ends) ::close(end);
}

}  // namespace
}  // namespace kbx
