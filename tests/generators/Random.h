// Random: numbers that look random and are the same in every run, on every machine.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kbx {

class Random {
 public:
  explicit Random(std::uint64_t seed) : _state(seed) {}
  /// Numbers of their own for each of many things that share a seed.
  Random(std::uint64_t seed, std::uint64_t thing)
      : _state(Random(seed ^ Random(thing).next()).next()) {}

  std::uint64_t next() {
    std::uint64_t mixed = _state += 0x9E3779B97F4A7C15u;
    mixed = (mixed ^ mixed >> 30) * 0xBF58476D1CE4E5B9u;
    mixed = (mixed ^ mixed >> 27) * 0x94D049BB133111EBu;
    return mixed ^ mixed >> 31;
  }
  /// A number below a limit, which is more than 0.
  std::size_t below(std::size_t limit) { return static_cast<std::size_t>(next() % limit); }
  std::size_t between(std::size_t least, std::size_t most) {
    return least + below(most - least + 1);
  }
  bool chance(unsigned percent) { return below(100) < percent; }

 private:
  std::uint64_t _state;
};

}  // namespace kbx
