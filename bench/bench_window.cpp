// The main window as the user meets it: a whole Open of a file with the list filled, a step of the
// scroll bar, and a column sort, on the real frmMain offscreen.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <QApplication>

#include <cstdio>
#include <memory>
#include <string>

#include "bench_files.h"
#include "frmMain.h"
#include "listview.h"
#include "scrollbar.h"

namespace {

std::string WriteBenchFile(const std::string& name, const std::vector<uint8_t>& bytes) {
  const std::string path = "/tmp/vossel-bench-" + std::to_string(getpid()) + "-" + name + ".grf";
  FILE* f = std::fopen(path.c_str(), "wb");
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::fclose(f);
  return path;
}

// One window for all cases, loaded with the palette beside the program.
frmMain& Window() {
  static std::unique_ptr<frmMain> window = [] {
    auto w = std::make_unique<frmMain>();
    w->Form_Load();
    w->show();
    QApplication::processEvents();
    return w;
  }();
  return *window;
}

void OpenFile(benchmark::State& state, const std::string& path) {
  frmMain& w = Window();
  for (auto _ : state) {
    w.FileName = path;
    w.LoadGRF();  // to the first picture, the list filled
  }
  state.counters["sprites"] = w.lvwSprite->ItemCount();
}

}  // namespace

void RegisterWindowCases() {
  static const std::string many = WriteBenchFile("5000", ManySpritesFile(5000));
  static const std::string limits = WriteBenchFile("limits", LimitsFile());
  benchmark::RegisterBenchmark("window/open/5000", [](benchmark::State& s) {
    OpenFile(s, many);
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("window/open/32767", [](benchmark::State& s) {
    OpenFile(s, limits);
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("window/scroll-step", [](benchmark::State& state) {
    frmMain& w = Window();
    w.FileName = many;
    w.LoadGRF();
    int16_t v = 0;
    for (auto _ : state) {
      v = static_cast<int16_t>((v + 1) % 4999);
      w.scrSprite->SetValue(v);  // DrawSprite and the labels, through the change event
    }
  })->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("window/sort/32767", [](benchmark::State& state) {
    frmMain& w = Window();
    w.FileName = limits;
    w.LoadGRF();
    const ColumnHeader size = w.lvwSprite->Column(4);
    for (auto _ : state) w.lvwSprite_ColumnClick(size);  // ascending, descending, ...
  })->Unit(benchmark::kMillisecond);
}

void CloseWindowCases() {
  std::remove(("/tmp/vossel-bench-" + std::to_string(getpid()) + "-5000.grf").c_str());
  std::remove(("/tmp/vossel-bench-" + std::to_string(getpid()) + "-limits.grf").c_str());
}
