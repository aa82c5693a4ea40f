// Compositions as the window will ask for them: a house tile at 4x zoom in 32 bits on its base-set
// ground, and a road vehicle's 8 views, each from the item's graphics to the finished picture.
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "compose.h"
#include "grffile.h"
#include "item_compose.h"
#include "items.h"

using namespace vossel;

namespace {

struct ComposeFixture {
  GrfFile File;
  FileReading Reading;
  GrfItems Items;
  bool Ok = false;
};

std::shared_ptr<ComposeFixture> LoadOnce(const std::string& name) {
  auto f = std::make_shared<ComposeFixture>();
  const MessageFn quiet = [](const std::string&) {};
  const std::string path = std::string(VOSSEL_TESTS_DIR) + "/data/newgrf/" + name;
  f->Ok = LoadGrfFile(path, f->File, quiet, quiet).End == OpenEnd::Ok;
  if (f->Ok) {
    ReadFileActions(f->File, f->Reading);
    f->Items = ReadItems(f->Reading);
  }
  return f;
}

// Its palette as a window's look gives it: any will do for the time taken.
Look In4Look() {
  Look look;
  for (size_t i = 0; i < look.Palette.size(); ++i) look.Palette[i] = static_cast<uint8_t>(i);
  look.Zoom = kZoomIn4;
  look.Depth = 32;
  return look;
}

void RegisterOne(const char* name, std::shared_ptr<ComposeFixture> f,
                 std::shared_ptr<BaseSprites> base, uint8_t feature, uint32_t id) {
  benchmark::RegisterBenchmark(name, [f, base, feature, id](benchmark::State& state) {
    const Item* item = f->Ok ? FindItem(f->Items, feature, id) : nullptr;
    if (item == nullptr) {
      state.SkipWithError("the file or its item cannot be read");
      return;
    }
    const Look look = In4Look();
    for (auto _ : state) {
      const Composition c = Compose(f->Items, *item, {});
      const ComposedPicture p = DrawComposition(f->File, f->Items, c, look, base.get(), {});
      benchmark::DoNotOptimize(p.Image.constBits());
    }
  })->Unit(benchmark::kMillisecond);
}

}  // namespace

// compose/house-in4-32bpp: house 2 of the Mars houses (a 32-bit building, its ground from the
// installed base set, scaled to 4x); compose/rv-8-views-in4-32bpp: road vehicle 88's 8 views.
void RegisterComposeCases() {
  auto base = std::make_shared<BaseSprites>(OpenBaseSprites());
  RegisterOne("compose/house-in4-32bpp", LoadOnce("ogfx-mars-houses.grf"), base, 0x07, 2);
  RegisterOne("compose/rv-8-views-in4-32bpp", LoadOnce("ogfx-mars-rv.grf"), base, 0x01, 88);
}
