// Whether a folder holds a file, against the standard library's relative paths: both follow every
// link, on the same paths in the same run. The answers are compared before anything is measured.
#include <benchmark/benchmark.h>
#include <stdlib.h>  // mkdtemp

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "NSURL+KBXFileBasics.h"

namespace kbx {
namespace {

namespace fs = std::filesystem;

/// A folder of folders, one in another, with a file at the bottom and a link to the middle.
class Tree {
 public:
  explicit Tree(int depth) {
    std::string name = (fs::temp_directory_path() / "ferncase-XXXXXX").string();
    if (!::mkdtemp(name.data())) throw std::runtime_error("no temporary folder can be made");
    _top = name;
    fs::path folder = _top;
    for (int i = 0; i < depth; ++i) folder /= "folder " + std::to_string(i);
    fs::create_directories(folder);
    inside = folder / "message.eml";
    std::ofstream(inside) << "x";
    fs::create_directories(_top / "beside/it");
    beside = _top / "beside/it";
    outside = "/usr/lib";
    missing = folder / "none/message.eml";
    fs::create_directory_symlink(folder, _top / "link");
    linked = _top / "link/message.eml";
  }
  ~Tree() {
    std::error_code ignored;
    fs::remove_all(_top, ignored);
  }
  Tree(const Tree&) = delete;
  Tree& operator=(const Tree&) = delete;

  const fs::path& top() const { return _top; }
  fs::path inside, beside, outside, missing, linked;

 private:
  fs::path _top;
};

bool holdsByRelativePath(const fs::path& folder, const fs::path& item) {
  const fs::path way = fs::relative(item, folder);
  return !way.empty() && way != "." && *way.begin() != "..";
}

Ref<NSURL> urlOf(const fs::path& path) {
  return NSURL::fileURLWithFileSystemRepresentation(path.string(), false);
}

using Item = fs::path Tree::*;

template <Item item>
void containsFileURL(benchmark::State& state) {
  const Tree tree(static_cast<int>(state.range(0)));
  const fs::path inner = tree.top() / "folder 0";
  const Ref<NSURL> folder = urlOf(inner), file = urlOf(tree.*item);
  if (kbxContainsFileURL(folder, file) != holdsByRelativePath(inner, tree.*item)) std::abort();
  for (auto _ : state) benchmark::DoNotOptimize(kbxContainsFileURL(folder, file));
}

template <Item item>
void filesystemRelative(benchmark::State& state) {
  const Tree tree(static_cast<int>(state.range(0)));
  const fs::path inner = tree.top() / "folder 0";
  for (auto _ : state) benchmark::DoNotOptimize(holdsByRelativePath(inner, tree.*item));
}

BENCHMARK(containsFileURL<&Tree::inside>)->Arg(1)->Arg(4)->Arg(16);
BENCHMARK(filesystemRelative<&Tree::inside>)->Arg(1)->Arg(4)->Arg(16);
BENCHMARK(containsFileURL<&Tree::linked>)->Arg(4);
BENCHMARK(filesystemRelative<&Tree::linked>)->Arg(4);
BENCHMARK(containsFileURL<&Tree::beside>)->Arg(4);
BENCHMARK(filesystemRelative<&Tree::beside>)->Arg(4);
BENCHMARK(containsFileURL<&Tree::outside>)->Arg(4);
BENCHMARK(filesystemRelative<&Tree::outside>)->Arg(4);
BENCHMARK(containsFileURL<&Tree::missing>)->Arg(4);
BENCHMARK(filesystemRelative<&Tree::missing>)->Arg(4);

}  // namespace
}  // namespace kbx
