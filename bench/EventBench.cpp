/// What one key event costs from its delivery to the tap callback's answer, beside two floors of the same run.

#include "bench/Allocations.hpp"
#include "desktop/Desktop.hpp"
#include "desktop/session/KeyNames.hpp"
#include "remap/KeyRemapper.hpp"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

using namespace desktop;

constexpr auto floorName = "floor/hash_set_lookup";

[[gnu::noinline]] void nothing() {
  benchmark::ClobberMemory();
}

void emptyCall(benchmark::State& state) {
  for (auto step : state) {
    static_cast<void>(step);
    nothing();
  }
}

void hashSetLookup(benchmark::State& state) {
  // More entries than the library is willing to search one by one.
  std::unordered_set<std::string> set;
  for (int index = 8000; index < 9000; ++index)
    set.insert("com.example.app." + std::to_string(index));
  const std::string looked = "com.example.app.8500";
  for (auto step : state) {
    static_cast<void>(step);
    benchmark::DoNotOptimize(set.find(looked));
  }
}

PropertyList exemptions(long count, bool withEditor) {
  PropertyList::Array list;
  for (long index = 0; index < count; ++index) {
    const std::string name = "com.example.app" + std::to_string(index);
    list.emplace_back(std::u16string(name.begin(), name.end()));
  }
  if (withEditor) list.emplace_back(u"com.example.editor");
  return list;
}

const KeyStroke letter = keyNamed("a");
const KeyStroke shortcut = keyNamed("ctrl+c");

/// Key-downs of `typed` with `application` in front and so many exempt applications.
void event(benchmark::State& state, const KeyStroke& typed, const char* application, bool exempt) {
  const platform::AutoreleasePool pool;
  Desktop desktop;
  desktop.mainBundle->open(TARNWICK_BUNDLE);
  desktop.applications.lendIdentifiers = true;
  desktop.applications.frontmost = shared(desktop.applications.named(application));
  desktop.defaults->file->set(u"exemptBundleIDs", exemptions(state.range(0), exempt));
  const auto remapper = tarnwick::KeyRemapper::make();
  remapper->start();

  const auto key = create<Event>();
  const auto deliver = [&] {
    key->code = typed.code;
    key->flags = typed.flags;
    benchmark::DoNotOptimize(desktop.server.throughTaps(key.get()));
  };
  deliver();
  const long before = allocationCount();
  for (auto step : state) {
    static_cast<void>(step);
    deliver();
  }
  const long made = allocationCount() - before;
  state.counters["allocations"] = benchmark::Counter(static_cast<double>(made), benchmark::Counter::kAvgIterations);
  // With the Finder in front the platform hands out elements and values of its own.
  if (made != 0 && desktop.applications.named("Finder") != desktop.applications.frontmost.get())
    state.SkipWithError("the key path allocated");
  remapper->stop();
}

double least(const std::vector<double>& times) {
  return *std::min_element(times.begin(), times.end());
}

/// After the figures, the least of each as a multiple of that of the lookup: whatever else the machine does only adds.
class Ratios : public benchmark::ConsoleReporter {
public:
  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.aggregate_name == "least") leasts[run.run_name.str()] = run.GetAdjustedCPUTime();
    }
  }
  void Finalize() override {
    const auto floor = leasts.find(floorName);
    if (floor == leasts.end()) return;
    std::printf("\nas multiples of %s:\n", floorName);
    for (const auto& [name, time] : leasts)
      std::printf("%6.2f  %s\n", time / floor->second, name.c_str());
  }

private:
  std::map<std::string, double> leasts;
};

void byLeast(benchmark::internal::Benchmark* measured) {
  measured->ComputeStatistics("least", least);
}

void withLists(benchmark::internal::Benchmark* measured) {
  byLeast(measured->Arg(0)->Arg(10)->Arg(100000));
}

BENCHMARK(emptyCall)->Name("floor/empty_call")->Apply(byLeast);
BENCHMARK(hashSetLookup)->Name(floorName)->Apply(byLeast);
BENCHMARK_CAPTURE(event, plain_letter, letter, "Editor", false)->Apply(withLists);
BENCHMARK_CAPTURE(event, rewritten_shortcut, shortcut, "Editor", false)->Apply(withLists);
BENCHMARK_CAPTURE(event, exempt_application, shortcut, "Editor", true)->Apply(withLists);
BENCHMARK_CAPTURE(event, finder_in_front, letter, "Finder", false)->Arg(0)->Apply(byLeast);

} // namespace

int main(int count, char** words) {
  // In mixed order, so that what else the machine does slows down all measurements alike. Words of the command line
  // come after these, and so overrule them.
  std::vector<std::string> texts{words[0], "--benchmark_repetitions=25", "--benchmark_min_time=0.02",
                                 "--benchmark_enable_random_interleaving=true",
                                 "--benchmark_display_aggregates_only=true"};
  texts.insert(texts.end(), words + 1, words + count);
  std::vector<char*> arguments;
  arguments.reserve(texts.size() + 1);
  for (std::string& text : texts)
    arguments.push_back(text.data());
  count = static_cast<int>(arguments.size());
  arguments.push_back(nullptr);

  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  Ratios reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
