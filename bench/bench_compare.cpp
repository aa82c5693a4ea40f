// Two files compared: the largest OpenGFX file against itself, every picture decoded on both
// sides, with and without counting the pixels.
#include <benchmark/benchmark.h>

#include <filesystem>
#include <memory>
#include <string>

#include "compare.h"
#include "grffile.h"

using namespace vossel;

namespace {

struct CompareFixture {
  GrfFile A, B;
  FileReading RA, RB;
  bool Ok = false;
};

std::shared_ptr<CompareFixture> LoadBoth(const std::string& path) {
  auto f = std::make_shared<CompareFixture>();
  const MessageFn quiet = [](const std::string&) {};
  f->Ok = std::filesystem::exists(path) &&
          LoadGrfFile(path, f->A, quiet, quiet).End == OpenEnd::Ok &&
          LoadGrfFile(path, f->B, quiet, quiet).End == OpenEnd::Ok;
  if (f->Ok) {
    ReadFileActions(f->A, f->RA);
    ReadFileActions(f->B, f->RB);
  }
  return f;
}

}  // namespace

void RegisterCompareCases() {
  auto fixture = LoadBoth("/usr/share/games/openttd/baseset/opengfx/ogfx1_base.grf");
  for (bool count : {false, true}) {
    const std::string name = count ? "compare/pixels/ogfx1_base" : "compare/ogfx1_base";
    benchmark::RegisterBenchmark(name.c_str(), [fixture, count](benchmark::State& state) {
      if (!fixture->Ok) state.SkipWithError("openttd-opengfx is not installed");
      CompareOptions options;
      options.CountPixels = count;
      for (auto _ : state) {
        const GrfComparison c =
            CompareFiles(fixture->A, fixture->RA, fixture->B, fixture->RB, options);
        benchmark::DoNotOptimize(c.Sprites.data());
      }
    })->Unit(benchmark::kMillisecond);
  }
}
