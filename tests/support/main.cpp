// The main function of every test program.
#include <gmock/gmock.h>

#include <cstdlib>

int main(int argc, char** argv) {
  // No test depends on the defaults of whoever runs it, or changes them; nor do the programs that
  // tests start.
  setenv("XDG_CONFIG_HOME", "/dev/null", 1);
  testing::InitGoogleMock(&argc, argv);
  return RUN_ALL_TESTS();
}
