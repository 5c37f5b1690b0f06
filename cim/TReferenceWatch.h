#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <vector>

// Reports the first change of an instance's references to the index that has looked at them.
class TReferenceWatch {
 public:
  using TChanges = std::vector<std::uint32_t>;

  // `number` is what the instance is called in `changes`.
  void Start(const boost::shared_ptr<TChanges>& changes, std::uint32_t number) {
    fChanges = changes;
    fNumber = number;
  }

  void Report() {
    if (!fChanges) return;
    fChanges->push_back(fNumber);
    fChanges.reset();
  }

 private:
  boost::shared_ptr<TChanges> fChanges;  // null: nobody has looked since the last report
  std::uint32_t fNumber = 0;
};
