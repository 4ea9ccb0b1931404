/// What a long list of exemptions costs in the settings window: opening it, and removing one entry.

#include "desktop/Desktop.hpp"
#include "desktop/session/WindowCommands.hpp"
#include "settings/MappingsWindowController.hpp"

#include <benchmark/benchmark.h>
#include <string>

namespace {

using namespace desktop;

PropertyList exemptions(long count) {
  PropertyList::Array list;
  for (long index = 0; index < count; ++index) {
    const std::string name = "com.example.app" + std::to_string(index);
    list.emplace_back(std::u16string(name.begin(), name.end()));
  }
  return list;
}

/// Opens the settings; where `removes`, that is not measured, and removing the first entry is.
void settings(benchmark::State& state, bool removes) {
  for (auto step : state) {
    static_cast<void>(step);
    state.PauseTiming();
    {
      const platform::AutoreleasePool pool;
      Desktop desktop;
      desktop.mainBundle->open(TARNWICK_BUNDLE);
      desktop.applications.tarnwick = shared(&desktop.start("Tarnwick", ""));
      desktop.defaults->file->set(u"exemptBundleIDs", exemptions(state.range(0)));
      const auto remapper = tarnwick::KeyRemapper::make();
      const auto controller = tarnwick::MappingsWindowController::make(remapper);
      if (!removes) state.ResumeTiming();
      platform::send<"show">(controller);
      if (removes) {
        state.ResumeTiming();
        if (!clickInWindow(desktop, "Remove", 1)) state.SkipWithError("there is nothing to remove");
      }
      state.PauseTiming();
    }
    state.ResumeTiming();
  }
}

void withLists(benchmark::internal::Benchmark* measured) {
  measured->Arg(1000)->Arg(10000)->Arg(100000)->Iterations(1)->Repetitions(5)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(settings, open, false)->Apply(withLists);
BENCHMARK_CAPTURE(settings, remove, true)->Apply(withLists);

} // namespace
