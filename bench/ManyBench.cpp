/// Many things of a kind at once, for `./dev bench`, which counts the instructions of two sizes: each one more has to
/// cost what the others did.

#include "desktop/Desktop.hpp"
#include "desktop/appkit/Workspace.hpp"
#include "platform/Dispatch.hpp"
#include "platform/Window.hpp"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

namespace {

using namespace desktop;

/// Blocks that wait on the main queue, every second one with a delay, and are run.
void blocks(Desktop& desktop, long count) {
  long left = count;
  for (long index = 0; index < count; ++index) {
    if (index % 2 == 0) {
      platform::asyncOnMain([&left] { --left; });
    } else {
      platform::asyncOnMainAfter(0.001 * static_cast<double>(index % 7), [&left] { --left; });
    }
  }
  while (left > 0) {
    desktop.queue.now = desktop.queue.nextMoment(desktop.queue.now + 1'000'000'000);
    desktop.queue.runNext();
  }
}

/// Applications that start, come to the front and end.
void applications(Desktop& desktop, long count) {
  const auto name = [](long index) { return "App " + std::to_string(index); };
  for (long index = 0; index < count; ++index)
    desktop.start(name(index), "com.example.app" + std::to_string(index));
  for (long index = 0; index < count; ++index)
    bringToFront(*desktop.applications.named(name(index)));
  for (long index = 0; index < count; ++index)
    desktop.applications.end(name(index));
}

/// Windows that come to the screen, once more to its front, and close.
void windows(Desktop& desktop, long count) {
  std::vector<Ref<Window>> all;
  for (long index = 0; index < count; ++index) {
    all.push_back(create<Window>());
    all.back()->initWithContentRect({{0, 0}, {100, 100}}, platform::NSWindowStyleMaskTitled,
                                    platform::NSBackingStoreBuffered, false);
    all.back()->setReleasedWhenClosed(false);
    all.back()->makeKeyAndOrderFront(nullptr);
  }
  for (const auto& each : all)
    each->makeKeyAndOrderFront(nullptr);
  while (Window* const front = desktop.appKit.frontWindow())
    front->close();
}

void many(benchmark::State& state, void (*live)(Desktop&, long)) {
  for (auto step : state) {
    static_cast<void>(step);
    const platform::AutoreleasePool pool;
    Desktop desktop;
    live(desktop, state.range(0));
  }
}

void inTwoSizes(benchmark::internal::Benchmark* measured) {
  measured->Arg(1)->Arg(5000)->Arg(50000)->Iterations(1);
}

BENCHMARK_CAPTURE(many, blocks, blocks)->Apply(inTwoSizes);
BENCHMARK_CAPTURE(many, applications, applications)->Apply(inTwoSizes);
BENCHMARK_CAPTURE(many, windows, windows)->Apply(inTwoSizes);

} // namespace
