// What a NewGRF makes: its items read from the actions of the largest real NewGRF the tests keep,
// and the graphs of all of them walked.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "grffile.h"
#include "items.h"

using namespace vossel;

namespace {

struct ItemsFixture {
  GrfFile File;
  FileReading Reading;
  bool Ok = false;
};

std::shared_ptr<ItemsFixture> LoadOnce(const std::string& path) {
  auto f = std::make_shared<ItemsFixture>();
  const MessageFn quiet = [](const std::string&) {};
  f->Ok = LoadGrfFile(path, f->File, quiet, quiet).End == OpenEnd::Ok;
  if (f->Ok) ReadFileActions(f->File, f->Reading);
  return f;
}

}  // namespace

// items/read: ReadItems alone; items/graphs: every item's graph walked as vossel-cli items does.
void RegisterItemsCases() {
  const std::string path = std::string(VOSSEL_TESTS_DIR) + "/data/newgrf/ogfx-mars-rv.grf";
  auto fixture = LoadOnce(path);
  benchmark::RegisterBenchmark("items/read/ogfx-mars-rv", [fixture](benchmark::State& state) {
    if (!fixture->Ok) state.SkipWithError("the file cannot be read");
    for (auto _ : state) {
      const GrfItems items = ReadItems(fixture->Reading);
      benchmark::DoNotOptimize(items.Items.data());
    }
  })->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("items/graphs/ogfx-mars-rv", [fixture](benchmark::State& state) {
    if (!fixture->Ok) state.SkipWithError("the file cannot be read");
    const GrfItems items = ReadItems(fixture->Reading);
    for (auto _ : state) {
      size_t sprites = 0;
      for (const Item& item : items.Items) sprites += GraphOf(items, item).Sprites.size();
      benchmark::DoNotOptimize(sprites);
    }
  })->Unit(benchmark::kMicrosecond);
}
