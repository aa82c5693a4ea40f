// Company colours on the way to the screen: a 32-bit picture of 4x zoom size with a mask layer,
// recoloured, shaded and painted into a picture area, as one step of the sprite browser does.
#include <benchmark/benchmark.h>

#include <random>

#include <QImage>

#include "colours.h"
#include "renderer.h"

using namespace vossel;

namespace {

void BM_CompanyColourStep(benchmark::State& state) {
  std::mt19937 rng(3);
  GrfV2Image image;
  image.Width = 256;
  image.Height = 124;
  image.Info = kV2Rgb | kV2Alpha | kV2Palette;
  image.Rgba.resize(4 * 256 * 124);
  image.Indices.resize(256 * 124);
  for (uint8_t& b : image.Rgba) b = static_cast<uint8_t>(rng());
  // A quarter of the pixels in company colours, as on a vehicle.
  for (uint8_t& m : image.Indices) m = rng() % 4 == 0 ? static_cast<uint8_t>(0xC6 + rng() % 8) : 0;
  PaletteBuffer palette{};
  vossel::RecolourMap map{};
  for (uint8_t& b : palette) b = static_cast<uint8_t>(rng());
  for (uint8_t& b : map) b = static_cast<uint8_t>(rng());
  QImage canvas(800, 600, QImage::Format_RGB32);
  const int32_t magnification = static_cast<int32_t>(state.range(0));
  for (auto _ : state) {
    const QImage picture = vossel::ImageBitmapInColour(image, palette, map);
    PaintPicture(canvas, picture, -128, -62, 780, 600, Qt::white, magnification);
    benchmark::DoNotOptimize(canvas.constBits());
  }
}
BENCHMARK(BM_CompanyColourStep)
    ->Name("colour/step32")
    ->Arg(1)
    ->Arg(2)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
