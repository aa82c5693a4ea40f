// Runs a fuzz target's entry point over files and folders of inputs, and over damaged copies of
// each (bits flipped, bytes set to their edge values, the end cut off, pieces repeated), as a
// fuzzer first tries them. The damage is the same on every run, so that a failure repeats.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

// A copy in an allocation of exactly its size, so that the address sanitizer sees a read past it;
// no input is a byte that is not passed, as a fuzzer passes it.
void Run(const std::vector<uint8_t>& bytes) {
  const std::unique_ptr<uint8_t[]> copy(new uint8_t[std::max<size_t>(bytes.size(), 1)]);
  std::copy(bytes.begin(), bytes.end(), copy.get());
  LLVMFuzzerTestOneInput(copy.get(), bytes.size());
}

void Replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
  Run(bytes);
  uint32_t seed = 1;
  const auto next = [&seed] { return (seed = seed * 1664525u + 1013904223u) >> 8; };
  // Fewer copies of a large input, such as a real GRF file.
  for (int copy = bytes.size() > 65536 ? 10 : 100; copy > 0; --copy) {
    std::vector<uint8_t> b = bytes;
    for (uint32_t edits = 1 + next() % 3; edits > 0 && !b.empty(); --edits) {
      const auto at = b.begin() + static_cast<long>(next() % b.size());
      const uint8_t edge[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
      if (const uint32_t kind = next() % 4; kind == 0) {
        *at ^= static_cast<uint8_t>(1u << next() % 8);
      } else if (kind == 1) {
        *at = edge[next() % 5];
      } else if (kind == 2) {
        b.erase(at, b.end());
      } else {
        const std::vector<uint8_t> piece(at, at + std::min<long>(b.end() - at, 1 + next() % 32));
        b.insert(at, piece.begin(), piece.end());
      }
    }
    Run(b);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    namespace fs = std::filesystem;
    if (fs::is_regular_file(argv[i])) Replay(argv[i]), ++count;
    if (fs::is_directory(argv[i]))
      for (const auto& entry : fs::recursive_directory_iterator(argv[i]))
        if (entry.is_regular_file()) Replay(entry.path()), ++count;
  }
  std::printf("replayed %d inputs and damaged copies of them\n", count);
  return count > 0 ? 0 : 1;
}
