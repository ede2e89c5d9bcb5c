// Tarnsysm: planar computational geometry for 2D drafting.
// Replays saved fuzz inputs (files, or directories of files) through a fuzz target, for ctest.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int main(int argc, char** argv) {
  namespace fs = std::filesystem;
  std::vector<fs::path> files;
  for (int a = 1; a < argc; ++a) {
    std::error_code error;
    if (!fs::is_directory(argv[a], error)) {
      files.emplace_back(argv[a]);
      continue;
    }
    std::vector<fs::path> inDir;
    for (const fs::directory_entry& entry : fs::directory_iterator(argv[a], error))
      if (entry.is_regular_file())
        inDir.push_back(entry.path());
    std::sort(inDir.begin(), inDir.end());  // the same order on every machine
    files.insert(files.end(), inDir.begin(), inDir.end());
  }
  for (const fs::path& file : files) {
    std::ifstream in(file, std::ios::binary);
    if (!in) {
      std::fprintf(stderr, "cannot read %s\n", file.string().c_str());
      return 1;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                  std::istreambuf_iterator<char>());
    // Name the input first, so a crash report says which one it was.
    std::printf("%s (%zu bytes)\n", file.string().c_str(), bytes.size());
    std::fflush(stdout);
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  }
  std::printf("replayed %zu inputs\n", files.size());
  // No input at all means a wrong path, not a pass.
  return files.empty() ? 1 : 0;
}
