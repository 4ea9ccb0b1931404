/// The main dispatch queue and the clock that it goes by.
#pragma once

#include "desktop/runtime/Part.hpp"

#include <map>

namespace desktop {

class MainQueue : public Part<MainQueue> {
public:
  using Work = void (*)(void*);

  /// Nanoseconds since the desktop began.
  std::int64_t now = 0;

  /// `due` goes by the same clock. The context stays the caller's: of work that never runs nobody frees it.
  void add(std::int64_t due, void* context, Work work);
  /// Runs the next block that is due; false when there is none, or when one is running: never one inside another.
  bool runNext();
  /// The moment at which the next block can run, if that is no later than `limit`; else `limit`.
  std::int64_t nextMoment(std::int64_t limit) const;
  /// Drops all blocks: their process has ended.
  void clear();

private:
  struct Block {
    void* context;
    Work work;
  };
  /// By due time, then by order of arrival.
  std::multimap<std::int64_t, Block> blocks;
  bool running = false;
};

} // namespace desktop
