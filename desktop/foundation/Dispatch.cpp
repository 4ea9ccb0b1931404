#include "desktop/foundation/Dispatch.hpp"

#include "platform/Dispatch.hpp"

#include <algorithm>

struct dispatch_queue_s {};
extern "C" {
dispatch_queue_s _dispatch_main_q;
}

namespace desktop {

void MainQueue::add(std::int64_t due, void* context, Work work) {
  blocks.insert({due, {context, work}});
}

bool MainQueue::runNext() {
  if (running || blocks.empty() || blocks.begin()->first > now) return false;
  const Block block = blocks.extract(blocks.begin()).mapped();
  running = true;
  block.work(block.context);
  running = false;
  return true;
}

void MainQueue::clear() {
  // On a Mac the memory that the blocks point to goes with the program's process. This process goes on, and a checker
  // of leaks would blame the program for what nobody points to: so somebody does, for ever.
  static auto* const dropped = new decltype(blocks);
  dropped->merge(blocks);
}

std::int64_t MainQueue::nextMoment(std::int64_t limit) const {
  // A running block holds back those behind it, whenever they were due.
  return running || blocks.empty() ? limit : std::min(limit, std::max(now, blocks.begin()->first));
}

} // namespace desktop

using namespace desktop;

extern "C" {

dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t delta) {
  const auto start = when == DISPATCH_TIME_NOW ? MainQueue::current().now : static_cast<std::int64_t>(when);
  return static_cast<dispatch_time_t>(start + delta);
}

void dispatch_async_f(dispatch_queue_t, void* context, dispatch_function_t work) {
  MainQueue& queue = MainQueue::current();
  queue.add(queue.now, context, work);
}

void dispatch_after_f(dispatch_time_t when, dispatch_queue_t, void* context, dispatch_function_t work) {
  MainQueue::current().add(static_cast<std::int64_t>(when), context, work);
}
}
