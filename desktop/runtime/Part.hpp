/// The parts that a desktop is put together from, each found from everywhere while its desktop exists.
#pragma once

#include "desktop/runtime/Runtime.hpp"

namespace desktop {

/// Base of what there is once per desktop. Each folder keeps its own part of the machine's state in such classes;
/// `Desktop` has them all for members, and so decides how long they live.
template <class Type> class Part {
public:
  Part(const Part&) = delete;
  Part& operator=(const Part&) = delete;
  /// The one that exists; stops the program when none does.
  static Type& current() {
    if (only == nullptr) [[unlikely]]
      stop("there is no desktop to run on");
    return *existing();
  }

  /// Null when none does.
  static Type* existing() { return static_cast<Type*>(only); }

protected:
  Part() {
    if (only != nullptr) stop("there can only be one desktop at a time");
    only = this;
  }
  ~Part() { only = nullptr; }

private:
  inline static Part* only = nullptr;
};

} // namespace desktop
