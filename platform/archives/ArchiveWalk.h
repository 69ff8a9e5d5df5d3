// ArchiveWalk: the objects of an archive, each once, without recursion.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kbx {

/// Levels of objects that hold objects, the outermost counted, in what is written and read.
inline constexpr std::size_t kDeepestArchive = 512;

/// Visits what hangs together from one object on. Objects go by their places in the archive.
///
/// An object may be held at many places and may hold itself; levels are counted without the way
/// back to an object that is being visited.
class ArchiveWalk {
 public:
  enum class Outcome { Done, Failed, TooDeep };

  virtual ~ArchiveWalk() = default;

  Outcome walk(std::size_t start);

 protected:
  /// What an object is: a leaf, or the places of those that it holds.
  struct Opened {
    bool isLeaf = false;
    bool hasFailed = false;
    std::vector<std::size_t> held{};
  };

  /// Called at the first visit.
  virtual Opened open(std::size_t place) = 0;
  /// Called for what is no leaf, when all that it holds has been visited. False ends the walk.
  virtual bool close(std::size_t place) = 0;

 private:
  struct Step {
    std::size_t place;
    std::vector<std::size_t> held;
    std::size_t next;
    std::uint16_t height;  // levels from here down
  };
  struct State {
    bool isVisited = false;
    std::uint16_t height = 0;  // 0 until it is closed
  };

  State& stateOf(std::size_t place);
  Outcome enter(std::size_t place);
  Outcome leave();

  std::vector<Step> _path;
  std::vector<State> _states;
};

}  // namespace kbx
