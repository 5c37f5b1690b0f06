#pragma once

#include <atomic>
#include <cstdint>

namespace zelcore::detail {

// Counts the changes of names and qualifiers that what classes keep worked out depends on. One
// counter for all containers: a change elsewhere costs a class a needless fresh look, no more.
class TSchemaChanges {
 public:
  static void Note() { fgCount.fetch_add(1, std::memory_order_relaxed); }
  static std::uint64_t Count() { return fgCount.load(std::memory_order_relaxed); }

 private:
  inline static std::atomic<std::uint64_t> fgCount{0};
};

}  // namespace zelcore::detail
