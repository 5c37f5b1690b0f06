#pragma once

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <vector>

class TCIMProperty;

// Stands in front of the properties of an instance that may hold references, and reports the first
// change of one to the index that has looked at them.
class TReferenceWatch {
 public:
  using TChanges = std::vector<std::uint32_t>;

  // The watch in front of these properties.
  static TReferenceWatch* Before(TCIMProperty* properties) {
    return reinterpret_cast<TReferenceWatch*>(properties) - 1;
  }

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
