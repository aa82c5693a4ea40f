// Runs a fuzz target's entry point over files and folders of inputs, and over damaged copies of
// each (bits flipped, bytes set to their edge values, the end cut off, pieces repeated), as a
// fuzzer first tries them. The damage is the same on every run, so that a failure repeats.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

// Damaged copies of each input; of a large one (a real GRF file) fewer.
int Copies(size_t size) {
  return size > 65536 ? 10 : 100;
}

// An exact allocation, so that the address sanitizer sees a read one past the end.
void Run(const std::vector<uint8_t>& bytes) {
  uint8_t* copy = new uint8_t[bytes.empty() ? 1 : bytes.size()];
  std::copy(bytes.begin(), bytes.end(), copy);
  LLVMFuzzerTestOneInput(copy, bytes.size());
  delete[] copy;
}

void Replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                                   std::istreambuf_iterator<char>());
  Run(bytes);
  uint32_t seed = 1;
  const auto next = [&seed] { return (seed = seed * 1664525u + 1013904223u) >> 8; };
  for (int copy = Copies(bytes.size()); copy > 0; --copy) {
    std::vector<uint8_t> b = bytes;
    for (uint32_t edits = 1 + next() % 3; edits > 0 && !b.empty(); --edits) {
      const size_t at = next() % b.size();
      const uint8_t edge[] = {0x00, 0x01, 0x7F, 0x80, 0xFF};
      switch (next() % 4) {
        case 0:
          b[at] ^= static_cast<uint8_t>(1u << next() % 8);
          break;
        case 1:
          b[at] = edge[next() % 5];
          break;
        case 2:
          b.resize(at);
          break;
        default: {
          const std::vector<uint8_t> piece(
              b.begin() + static_cast<long>(at),
              b.begin() + static_cast<long>(std::min(b.size(), at + 1 + next() % 32)));
          b.insert(b.begin() + static_cast<long>(at), piece.begin(), piece.end());
        }
      }
    }
    Run(b);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int count = 0;
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path(argv[i]);
    if (std::filesystem::is_directory(path)) {
      for (const auto& entry : std::filesystem::recursive_directory_iterator(path))
        if (entry.is_regular_file()) {
          Replay(entry.path());
          ++count;
        }
    } else if (std::filesystem::is_regular_file(path)) {
      Replay(path);
      ++count;
    }
  }
  std::printf("replayed %d inputs and damaged copies of them\n", count);
  return count > 0 ? 0 : 1;
}
