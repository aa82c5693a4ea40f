// Container version 2: indexing a whole file as it opens, and decoding one alternative.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "alternatives.h"
#include "bench_files.h"
#include "grf2.h"
#include "picture.h"

using namespace vossel;

void RegisterWindowOpen(const std::string& name, const std::string& path);

namespace {

void RegisterOpen(const std::string& name, std::vector<uint8_t> bytes) {
  auto shared = std::make_shared<std::vector<uint8_t>>(std::move(bytes));
  benchmark::RegisterBenchmark(("v2/open/" + name).c_str(), [shared](benchmark::State& state) {
    for (auto _ : state) {
      GrfV2Index index;
      IndexGrfV2(shared->data(), shared->size(), index, nullptr);
      benchmark::DoNotOptimize(index.Sprites.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(shared->size()));
  })->Unit(benchmark::kMillisecond);
}

void BM_V2Decode(benchmark::State& state) {
  const std::vector<uint8_t> file = V2DecodeFile();
  GrfV2Index index;
  IndexGrfV2(file.data(), file.size(), index, nullptr);
  const GrfV2Alternative& a = index.Alternatives.at(0);
  for (auto _ : state) {
    SpritePicture image;
    if (DecodeAlternative(file.data(), file.size(), a, image) != GrfResult::Ok)
      state.SkipWithError("the sprite does not decode");
    benchmark::DoNotOptimize(image.Rgba.data());
  }
}
BENCHMARK(BM_V2Decode)->Name("v2/decode")->Unit(benchmark::kMicrosecond);

}  // namespace

// The OpenGFX files and a generated file of 60,000 sprites, indexed in memory.
// VOSSEL_BENCH_WRITE_V2 (a path) has a file of 250,000 sprites, about 350 MB, written there and
// indexed from the disk as the programs open it; the file is left for measuring a whole program on
// it.
void RegisterV2Cases() {
  for (BenchFile& f : OpenGfxBenchFiles()) RegisterOpen(f.Name, std::move(f.Bytes));
  RegisterOpen("60000", V2ManySpritesFile(60000));
  const char* path = std::getenv("VOSSEL_BENCH_WRITE_V2");
  if (path == nullptr || !WriteV2ManySpritesFile(path, 250000)) return;
  const std::string big = path;
  benchmark::RegisterBenchmark("v2/open/250000", [big](benchmark::State& state) {
    const FileOpenResult open = OpenForReading(big);
    if (!open.Ok) state.SkipWithError("the file cannot be opened");
    for (auto _ : state) {
      GrfV2Index index;
      if (IndexGrfV2(FileSource(*open.File), index, nullptr) != GrfResult::Ok)
        state.SkipWithError("the file does not index whole");
      benchmark::DoNotOptimize(index.Sprites.data());
    }
    state.SetBytesProcessed(state.iterations() * (open.Ok ? open.File->Length : 0));
  })->Unit(benchmark::kMillisecond);
  RegisterWindowOpen("v2-250000", big);
}
