#include "host/watch/ServiceManager.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include "tests/support/FakeEnvironment.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

/// The end of the supervisor.
class Supervisor {
 public:
  explicit Supervisor(const std::string& path) : _socket(::socket(AF_UNIX, SOCK_DGRAM, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    if (::bind(_socket, reinterpret_cast<sockaddr*>(&address), size) != 0)
      throw std::runtime_error(std::strerror(errno));
  }
  ~Supervisor() { ::close(_socket); }

  /// The next message that is there; "" when there is none.
  std::string next() {
    std::array<char, 1000> buffer;
    const ssize_t size = ::recv(_socket, buffer.data(), buffer.size(), MSG_DONTWAIT);
    return size < 0 ? "" : std::string(buffer.data(), static_cast<std::size_t>(size));
  }

 private:
  const int _socket;
};

TEST(ServiceManager, IsToldThroughTheSocketThatTheEnvironmentNames) {
  TemporaryFolder folder;
  const std::string path = (folder / "notify").string();
  Supervisor supervisor(path);
  FakeEnvironment environment{{"NOTIFY_SOCKET=" + path}};
  ScopedService<Environment> installed(environment);
  tellServiceManager("READY=1\nSTATUS=Following 3 folders");
  EXPECT_EQ(supervisor.next(), "READY=1\nSTATUS=Following 3 folders");
  tellServiceManager("STOPPING=1");
  EXPECT_EQ(supervisor.next(), "STOPPING=1");
}

TEST(ServiceManager, MayHaveASocketThatIsNoFile) {
  const std::string name = "ferncase-test-" + std::to_string(::getpid());
  Supervisor supervisor(std::string(1, '\0') + name);
  FakeEnvironment environment{{"NOTIFY_SOCKET=@" + name}};
  ScopedService<Environment> installed(environment);
  tellServiceManager("READY=1");
  EXPECT_EQ(supervisor.next(), "READY=1");
}

TEST(ServiceManager, NothingHappensWhereNobodyListens) {
  for (const std::string& place :
       {std::string(), std::string("/"), std::string("relative"), std::string("/nowhere/at/all"),
        std::string("@nobody"), std::string("vsock:2:1"), "/" + std::string(200, 'x')}) {
    FakeEnvironment environment{{"NOTIFY_SOCKET=" + place}};
    ScopedService<Environment> installed(environment);
    tellServiceManager("READY=1");
  }
}

}  // namespace
}  // namespace kbx
