// Runs a fuzz target's entry point over files and folders of inputs, so that the seed corpora and
// every kept finding are replayed by the ordinary test suite.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

void Replay(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
  // An exact allocation, so that the address sanitizer sees a read one past the end.
  const size_t size = bytes.size();
  uint8_t* copy = new uint8_t[size == 0 ? 1 : size];
  std::copy(bytes.begin(), bytes.end(), copy);
  LLVMFuzzerTestOneInput(copy, size);
  delete[] copy;
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
  std::printf("replayed %d inputs\n", count);
  return count > 0 ? 0 : 1;
}
