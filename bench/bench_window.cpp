// The main window as the user meets it: a whole Open of a file with the list filled, a step of the
// scroll bar, a column sort and Zoom In, on the real frmMain offscreen, for version 1 and 2.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <QApplication>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "bench_files.h"
#include "frmMain.h"
#include "grf_writer.h"
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

// `count` sprites, each its own id with three 32-bit pictures: normal 8 x 4, in 2x and in 4x, grey
// runs that compress well, so that the file stays near 25 MB.
std::vector<uint8_t> V2ThreeZoomsFile(int count) {
  grfw::Bytes one;
  for (uint8_t zoom : {0, 2, 1}) {
    const uint16_t scale = zoom == 0 ? 1 : zoom == 2 ? 2 : 4;
    grfw::Image2 im{0x03, zoom, uint16_t(8 * scale), uint16_t(4 * scale), 0, 0, {}};
    for (int i = 0; i < im.width * im.height; ++i)
      im.pixels.resize(im.pixels.size() + 4, uint8_t(i / 8 * 16));
    grfw::Append(one, grfw::V2Sprite(1, im));
  }
  std::vector<grfw::Bytes> data, sprites;
  for (int i = 1; i <= count; ++i) {
    data.push_back(grfw::V2Ref(uint32_t(i)));
    sprites.push_back(one);
    // Each of the three entries starts with its id; the entries follow one another.
    for (size_t at = 0; at < one.size();) {
      const uint32_t size = one[at + 4] | one[at + 5] << 8 | one[at + 6] << 16 | one[at + 7] << 24;
      for (int k = 0; k < 4; ++k) sprites.back()[at + k] = uint8_t(uint32_t(i) >> (8 * k));
      at += 8 + size;
    }
  }
  return grfw::V2File(data, sprites);
}

// `count` 32-bit sprites at 4x zoom of 256 x 124 in tile form: an opaque diamond of noise with an
// edge of half-transparent pixels, and nothing outside it, as a zoomed ground tile looks.
std::vector<uint8_t> V2TilesFile(int count) {
  uint32_t state = 15;
  std::vector<grfw::Bytes> data, sprites;
  for (int i = 1; i <= count; ++i) {
    grfw::Image2 im{0x0B, 1, 256, 124, -124, -20, {}};
    for (int y = 0; y < 124; ++y) {
      for (int x = 0; x < 256; ++x) {
        // 1 at the centre, 0 on the diamond's edge, below 0 outside it.
        const double inside = 1.0 - std::abs(x - 127.5) / 128.0 - std::abs(y - 61.5) / 62.0;
        state = state * 1103515245u + 12345u;
        const uint8_t v = uint8_t(state >> 16);
        const uint8_t alpha = inside < 0 ? 0 : inside < 0.03 ? 128 : 255;
        for (uint8_t b : {uint8_t(alpha ? v | 1 : 0), uint8_t(v / 2), uint8_t(v / 3), alpha})
          im.pixels.push_back(b);
      }
    }
    data.push_back(grfw::V2Ref(uint32_t(i)));
    sprites.push_back(grfw::V2Sprite(uint32_t(i), im));
  }
  return grfw::V2File(data, sprites);
}

void OpenFile(benchmark::State& state, const std::string& path) {
  frmMain& w = Window();
  for (auto _ : state) {
    w.FileName = path;
    w.LoadGRF();  // to the first picture, the list filled
  }
  state.counters["sprites"] = w.lvwSprite->ItemCount();
}

// Steps of the scroll bar through the first `count` sprites of the file.
void ScrollSteps(benchmark::State& state, const std::string& path, int32_t count) {
  frmMain& w = Window();
  w.FileName = path;
  w.LoadGRF();
  int32_t v = 0;
  for (auto _ : state) {
    v = (v + 1) % count;
    w.scrSprite->SetValue(v);  // DrawSprite and the labels, through the change event
  }
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
  benchmark::RegisterBenchmark("window/scroll-step", [](benchmark::State& s) {
    ScrollSteps(s, many, 4999);
  })->Unit(benchmark::kMicrosecond);
  static const std::string v2many = WriteBenchFile("v2-60000", V2ThreeZoomsFile(60000));
  static const std::string v2tiles = WriteBenchFile("v2-tiles", V2TilesFile(64));
  benchmark::RegisterBenchmark("window/open/v2-60000", [](benchmark::State& s) {
    OpenFile(s, v2many);
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("window/v2-scroll-step/32bpp-in4", [](benchmark::State& s) {
    ScrollSteps(s, v2tiles, 64);  // a version-2 picture is decoded as it is shown
  })->Unit(benchmark::kMicrosecond);
  benchmark::RegisterBenchmark("window/zoom-in/256x124", [](benchmark::State& state) {
    frmMain& w = Window();
    w.FileName = v2tiles;
    w.LoadGRF();
    for (auto _ : state) {
      state.PauseTiming();
      w.mnuActualSize_Click();
      state.ResumeTiming();
      w.mnuZoomIn_Click();  // 1x to 2x: the sprite decoded and drawn magnified
    }
    w.mnuActualSize_Click();
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
  for (const char* name : {"5000", "limits", "v2-60000", "v2-tiles"})
    std::remove(("/tmp/vossel-bench-" + std::to_string(getpid()) + "-" + name + ".grf").c_str());
}
