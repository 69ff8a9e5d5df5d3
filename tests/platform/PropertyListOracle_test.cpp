// Property lists of both forms against Python's reader and writer, where there is a Python.
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/support/PropertyLists.h"
#include "tests/support/TemporaryFolder.h"

namespace kbx {
namespace {

using namespace test;

constexpr std::uint32_t kLists = 300;

// Reads each pair of files, which must hold the same list, and writes it again in both forms.
constexpr char kScript[] = R"py(
import plistlib, re, sys
folder, count = sys.argv[1], int(sys.argv[2])

def plain(text):  # without what is a matter of taste: the digits of real numbers
    return re.sub(rb"<real>.*?</real>", b"<real/>", text)

for number in range(count):
    xml = open(f"{folder}/{number}.xml", "rb").read()
    binary = open(f"{folder}/{number}.bin", "rb").read()
    value = plistlib.loads(xml)
    assert repr(value) == repr(plistlib.loads(binary)), f"{number}: the forms differ"
    again = plistlib.dumps(value, fmt=plistlib.FMT_BINARY, sort_keys=False)
    assert again == binary, f"{number}: the binary form differs"
    if b"&#13;" not in xml:  # which Python's writer turns into a line feed
        mine = plistlib.dumps(value, sort_keys=False)
        assert plain(mine) == plain(xml), f"{number}: the XML form differs"
        open(f"{folder}/{number}.again.xml", "wb").write(mine)
    open(f"{folder}/{number}.again", "wb").write(again)
)py";

class PropertyListOracle : public testing::Test {
 protected:
  void SetUp() override {
    if (std::system("python3 -c 'import plistlib' >/dev/null 2>&1") != 0)
      GTEST_SKIP() << "there is no python3 with plistlib";
  }
  int run(const char* script, const std::string& arguments) const {
    _folder.write("script.py", script);
    const std::string path = (_folder / "script.py").string();
    const std::string folder = _folder.path().string();
    return std::system(("python3 '" + path + "' '" + folder + "' " + arguments).c_str());
  }

  const TemporaryFolder _folder;
};

TEST_F(PropertyListOracle, PythonReadsAndWritesTheSameLists) {
  for (std::uint32_t seed = 0; seed < kLists; ++seed) {
    auto list = RandomList(seed).list();
    _folder.write(std::to_string(seed) + ".xml", written(list, kXML));
    _folder.write(std::to_string(seed) + ".bin", written(list, kBinary));
  }
  ASSERT_EQ(run(kScript, std::to_string(kLists)), 0);
  for (std::uint32_t seed = 0; seed < kLists; ++seed) {
    auto list = RandomList(seed).list();
    EXPECT_TRUE(isEqual(read(_folder.read(std::to_string(seed) + ".again")), list)) << seed;
    const std::string xml = _folder.read(std::to_string(seed) + ".again.xml");
    EXPECT_TRUE(xml.empty() || isEqual(read(xml), list)) << seed;
  }
}

}  // namespace
}  // namespace kbx
