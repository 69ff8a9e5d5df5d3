// Runs a fuzz target over files instead of under libFuzzer, so that it is an ordinary test.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

namespace fs = std::filesystem;

void runFile(const fs::path& file) {
  std::ifstream stream(file, std::ios::binary);
  const std::vector<char> content((std::istreambuf_iterator<char>(stream)), {});
  // A copy of exactly the input's size, so that the address sanitizer sees a read past its end.
  const std::vector<std::uint8_t> bytes(content.begin(), content.end());
  std::cout << file.filename().string() << ", " << bytes.size() << " bytes" << std::endl;
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

std::size_t runFolder(const fs::path& folder) {
  std::size_t count = 0;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (!entry.is_regular_file()) continue;
    runFile(entry.path());
    ++count;
  }
  return count;
}

}  // namespace

// Arguments: the folders of the corpus. Fails when they hold no input at all.
int main(int argc, char** argv) {
  LLVMFuzzerTestOneInput(nullptr, 0);
  std::size_t count = 0;
  for (int index = 1; index < argc; ++index) count += runFolder(argv[index]);
  std::cout << count << " inputs" << std::endl;
  return count > 0 ? 0 : 1;
}
