// Runs the fuzz target over saved inputs, for builds without libFuzzer: each
// argument is a file or a folder whose files are all replayed. A folder without
// any file is an error, so that a lost corpus does not pass silently.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace {

void replay(const std::filesystem::path &file) {
  std::ifstream in(file, std::ios::binary);
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
}

}  // namespace

int main(int argc, char **argv) {
  for (int i = 1; i < argc; ++i) {
    const std::filesystem::path path(argv[i]);
    if (!std::filesystem::is_directory(path)) {
      replay(path);
      continue;
    }
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(path))
      if (entry.is_regular_file()) files.push_back(entry.path());
    if (files.empty()) {
      std::fprintf(stderr, "no input in %s\n", argv[i]);
      return 1;
    }
    std::sort(files.begin(), files.end());
    for (const auto &file : files) replay(file);
  }
  return 0;
}
