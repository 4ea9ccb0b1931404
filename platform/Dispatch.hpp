/// The main dispatch queue: work for the main thread, after the current work or after a delay.
#pragma once

#include "platform/Runtime.hpp"

#include <memory>
#include <utility>

#if defined(__APPLE__) && __has_include(<dispatch/dispatch.h>)
#include <dispatch/dispatch.h>
#else
extern "C" {
struct dispatch_queue_s;
using dispatch_queue_t = dispatch_queue_s*;
using dispatch_time_t = std::uint64_t;
using dispatch_function_t = void (*)(void*);

extern struct dispatch_queue_s _dispatch_main_q;
inline dispatch_queue_t dispatch_get_main_queue() {
  return &_dispatch_main_q;
}

inline constexpr dispatch_time_t DISPATCH_TIME_NOW = 0;
/// `delta` in nanoseconds.
dispatch_time_t dispatch_time(dispatch_time_t when, std::int64_t delta);
void dispatch_async_f(dispatch_queue_t queue, void* context, dispatch_function_t work);
void dispatch_after_f(dispatch_time_t when, dispatch_queue_t queue, void* context, dispatch_function_t work);
}
#endif

namespace platform {

/// Runs a block that was put on the heap for the queue, once, and frees it.
template <class Block> void runBlock(void* context) noexcept {
  const AutoreleasePool pool;
  const std::unique_ptr<Block> block(static_cast<Block*>(context));
  (*block)();
}

/// Runs `block` on the main thread after the current work.
template <class Block> void asyncOnMain(Block block) {
  dispatch_async_f(dispatch_get_main_queue(), new Block(std::move(block)), runBlock<Block>);
}

/// Runs `block` on the main thread `seconds` from now.
template <class Block> void asyncOnMainAfter(double seconds, Block block) {
  constexpr double nanosecondsPerSecond = 1e9;
  const auto delta = static_cast<std::int64_t>(seconds * nanosecondsPerSecond);
  dispatch_after_f(dispatch_time(DISPATCH_TIME_NOW, delta), dispatch_get_main_queue(), new Block(std::move(block)),
                   runBlock<Block>);
}

} // namespace platform
