// vossel-bench: the engine, the renderer and the chunk list on real and generated files, with the
// plain decoder on the same files to compare the loader with.
#include <benchmark/benchmark.h>

#include <QApplication>
#include <QImage>

#include "bench_files.h"
#include "chunks.h"
#include "grf.h"
#include "load_sprites.h"
#include "reference.h"
#include "renderer.h"
#include "sprite_bitmap.h"

using namespace vossel;

namespace {

void RegisterFileCases(const std::string& name, std::vector<uint8_t> bytes) {
  auto shared = std::make_shared<std::vector<uint8_t>>(std::move(bytes));
  benchmark::RegisterBenchmark(("load/" + name).c_str(), [shared](benchmark::State& state) {
    // The window keeps its store from one load to the next.
    SpriteStore store;
    for (auto _ : state) {
      const LoadOutcome outcome =
          LoadSprites(shared->data(), static_cast<int32_t>(shared->size()), store, nullptr);
      benchmark::DoNotOptimize(outcome.Totals.Count);
      benchmark::DoNotOptimize(store.SpriteData.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(shared->size()));
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("reference/" + name).c_str(), [shared](benchmark::State& state) {
    ReferenceLoad load;
    for (auto _ : state) {
      load = ReferenceDecode(shared->data(), static_cast<int32_t>(shared->size()),
                             std::move(load.Data));
      benchmark::DoNotOptimize(load.Count);
      benchmark::DoNotOptimize(load.Data.data());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(shared->size()));
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark(("scan/" + name).c_str(), [shared](benchmark::State& state) {
    for (auto _ : state) {
      ChunkScan scan;
      const ScanOutcome outcome = ScanBuffer(*shared, scan);
      benchmark::DoNotOptimize(outcome.Count);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(shared->size()));
  })->Unit(benchmark::kMillisecond);
}

void BM_DrawSprite256(benchmark::State& state) {
  SpriteStore store;
  SpriteRecord r;
  r.Width = 256;
  r.Height = 256;
  r.Size = 256 * 256;
  store.SpriteTable.push_back(r);
  store.SpriteData.AssignZeroed(256 * 256);
  for (int i = 0; i < 256 * 256; ++i)
    store.SpriteData[static_cast<size_t>(i)] = static_cast<uint8_t>(i * 7);
  PaletteBuffer palette{};
  for (int i = 0; i < 1024; ++i) palette[static_cast<size_t>(i)] = static_cast<uint8_t>(i);
  // The picture area of the main window at its start size.
  QImage canvas(350, 318, QImage::Format_RGB32);
  for (auto _ : state) {
    DrawSprite(canvas, store, 0, palette, 334, 318);
    benchmark::DoNotOptimize(canvas.constBits());
  }
}
BENCHMARK(BM_DrawSprite256)->Name("draw/256x256")->Unit(benchmark::kMicrosecond);

void BM_ChunkList128(benchmark::State& state) {
  ChunkScan scan;
  ScanBuffer(ChunkyFile(128), scan);
  for (auto _ : state) {
    const std::vector<ChunkLine> lines = ChunkList(scan, 0);
    if (lines.size() != 128) state.SkipWithError("expected 128 lines");
    benchmark::DoNotOptimize(lines.data());
  }
}
BENCHMARK(BM_ChunkList128)->Name("chunks/128")->Unit(benchmark::kMicrosecond);

}  // namespace

void RegisterWindowCases();
void CloseWindowCases();
void RegisterV2Cases();
void RegisterItemsCases();
void RegisterCompareCases();
void RegisterComposeCases();

int main(int argc, char** argv) {
  // The window cases run on Qt's offscreen platform unless a display is asked for.
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication app(argc, argv);
  RegisterWindowCases();
  for (BenchFile& f : RealBenchFiles()) RegisterFileCases(f.Name, std::move(f.Bytes));
  RegisterFileCases("limits", LimitsFile());
  RegisterV2Cases();
  RegisterItemsCases();
  RegisterCompareCases();
  RegisterComposeCases();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  CloseWindowCases();
  return 0;
}
