// The main window as the user meets it: a whole Open of a file with the list filled, a step of the
// scroll bar, a column sort and Zoom In, on the real frmMain offscreen, for version 1 and 2; and
// the Sprite Sheet beside it on 60,000 sprites: its first screen, a page down, its memory.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QScrollBar>

#include <cstdio>
#include <memory>
#include <string>

#include "bench_files.h"
#include "frmMain.h"
#include "frmSheet.h"
#include "listview.h"
#include "picturebox.h"
#include "scrollbar.h"

using namespace vossel;

namespace {

std::string WriteBenchFile(const std::string& name, const std::vector<uint8_t>& bytes) {
  const std::string path = "/tmp/vossel-bench-" + std::to_string(getpid()) + "-" + name + ".grf";
  FILE* f = std::fopen(path.c_str(), "wb");
  std::fwrite(bytes.data(), 1, bytes.size(), f);
  std::fclose(f);
  return path;
}

// One window for all cases, loaded with the palette beside the program; closed before the
// application ends, which a window cannot outlive.
std::unique_ptr<frmMain> window;
frmMain& Window() {
  if (!window) {
    window = std::make_unique<frmMain>();
    window->Form_Load();
    window->show();
    QApplication::processEvents();
  }
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

// Notes when the picture area is first painted while the window holds sprites: the first picture.
struct FirstPaint : QObject {
  const frmMain* Window = nullptr;
  QElapsedTimer Clock;
  double Milliseconds = -1;
  bool eventFilter(QObject*, QEvent* event) override {
    if (event->type() == QEvent::Paint && Milliseconds < 0 && SpriteCount(Window->File) > 0)
      Milliseconds = static_cast<double>(Clock.nsecsElapsed()) / 1e6;
    return false;
  }
};
// The process's resident memory in MiB.
double ResidentMiB() {
  long pages = 0, resident = 0;
  if (FILE* f = std::fopen("/proc/self/statm", "r")) {
    if (std::fscanf(f, "%ld %ld", &pages, &resident) != 2) resident = 0;
    std::fclose(f);
  }
  return double(resident) * double(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

// The Sprite Sheet of the main window, open on `path` at its first size.
frmSheet& Sheet(const std::string& path) {
  frmMain& w = Window();
  if (w.FileName != path) {
    w.FileName = path;
    w.LoadGRF();
  }
  if (!w.SpriteSheet) w.mnuSheet_Click();
  QApplication::processEvents();
  return *w.SpriteSheet;
}

// Paints the grid and lets the decoded pictures in until every cell in sight has its own.
void Settle(frmSheet& sheet) {
  sheet.Grid->repaint();
  while (sheet.Waiting() > 0) QApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
  QApplication::processEvents();
}

// From the file's arrival to the first screen with every picture: what the main window hands
// over (roles and look) included.
void SheetFirstScreen(benchmark::State& state, const std::string& path) {
  frmSheet& sheet = Sheet(path);
  frmMain& w = Window();
  for (auto _ : state) {
    state.PauseTiming();
    sheet.Detach();
    state.ResumeTiming();
    Look look;
    look.Palette = w.Palette;
    sheet.Attach(w.File, w.Reading, 0, look);
    Settle(sheet);
  }
  state.counters["cells"] = static_cast<double>(sheet.Layout().Columns) *
                            (sheet.Grid->height() / sheet.Layout().PitchY + 1);
}

// A page down and its paint, without waiting for the pictures.
void SheetPageScroll(benchmark::State& state, const std::string& path) {
  frmSheet& sheet = Sheet(path);
  for (auto _ : state) {
    const int next = sheet.scrGrid->value() + sheet.scrGrid->pageStep();
    sheet.scrGrid->setValue(next > sheet.scrGrid->maximum() ? 0 : next);
    sheet.Grid->repaint();
  }
}

// Resident memory grown by the sheet: before it is opened, and after paging through the first
// 400 screens with every picture decoded.
void SheetMemory(benchmark::State& state, const std::string& path) {
  frmMain& w = Window();
  w.FileName = path;
  w.LoadGRF();
  QApplication::processEvents();
  const double before = ResidentMiB();
  frmSheet& sheet = Sheet(path);
  for (auto _ : state) {
    sheet.scrGrid->setValue(0);
    for (int page = 0; page < 400 && sheet.scrGrid->value() < sheet.scrGrid->maximum(); ++page) {
      Settle(sheet);
      sheet.scrGrid->setValue(sheet.scrGrid->value() + sheet.scrGrid->pageStep());
    }
  }
  state.counters["rss_growth_MiB"] = ResidentMiB() - before;
  state.counters["file_MiB"] = double(w.File.FileLength) / (1024.0 * 1024.0);
}

}  // namespace

// A whole Open from a window with no file, and the time to its first picture beside it.
void RegisterWindowOpen(const std::string& name, const std::string& path) {
  benchmark::RegisterBenchmark(("window/open/" + name).c_str(), [path](benchmark::State& state) {
    frmMain& w = Window();
    FirstPaint first;
    first.Window = &w;
    w.picSprite->installEventFilter(&first);
    double total = 0;
    for (auto _ : state) {
      state.PauseTiming();
      w.mnuNew_Click();
      first.Milliseconds = -1;
      state.ResumeTiming();
      first.Clock.start();
      w.FileName = path;
      w.LoadGRF();
      total += first.Milliseconds;
    }
    w.picSprite->removeEventFilter(&first);
    state.counters["first_picture_ms"] = total / static_cast<double>(state.iterations());
    state.counters["sprites"] = w.lvwSprite->ItemCount();
  })->Unit(benchmark::kMillisecond);
}

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
  static const std::string v2many = WriteBenchFile("v2-60000", V2ManySpritesFile(60000));
  static const std::string v2tiles = WriteBenchFile("v2-tiles", V2DecodeFile(64));
  benchmark::RegisterBenchmark("window/open/v2-60000", [](benchmark::State& s) {
    OpenFile(s, v2many);
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("sheet/memory/v2-60000",
                               [](benchmark::State& s) { SheetMemory(s, v2many); })
      ->Unit(benchmark::kMillisecond)
      ->Iterations(1);
  benchmark::RegisterBenchmark("sheet/first-screen/v2-60000", [](benchmark::State& s) {
    SheetFirstScreen(s, v2many);
  })->Unit(benchmark::kMillisecond);
  benchmark::RegisterBenchmark("sheet/page-scroll/v2-60000", [](benchmark::State& s) {
    SheetPageScroll(s, v2many);
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
  window.reset();
  for (const char* name : {"5000", "limits", "v2-60000", "v2-tiles"})
    std::remove(("/tmp/vossel-bench-" + std::to_string(getpid()) + "-" + name + ".grf").c_str());
}
