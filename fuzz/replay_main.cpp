// Tarnsysm: planar computational geometry for 2D drafting.
// Replays saved fuzz inputs (files, or directories of files) through a fuzz target, for ctest.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

bool replayFile(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    std::fprintf(stderr, "cannot read %s\n", path.string().c_str());
    return false;
  }
  const std::vector<char> bytes((std::istreambuf_iterator<char>(in)),
                                std::istreambuf_iterator<char>());
  // Name the input first, so a crash report says which one it was.
  std::printf("%s (%zu bytes)\n", path.string().c_str(), bytes.size());
  std::fflush(stdout);
  LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s INPUT_OR_DIRECTORY...\n", argv[0]);
    return 2;
  }
  int replayed = 0;
  for (int a = 1; a < argc; ++a) {
    const fs::path arg(argv[a]);
    std::vector<fs::path> files;
    std::error_code error;
    if (fs::is_directory(arg, error)) {
      for (const fs::directory_entry& entry : fs::directory_iterator(arg, error))
        if (entry.is_regular_file())
          files.push_back(entry.path());
      std::sort(files.begin(), files.end());  // the same order on every machine
    } else {
      files.push_back(arg);
    }
    for (const fs::path& file : files) {
      if (!replayFile(file))
        return 1;
      ++replayed;
    }
  }
  std::printf("replayed %d inputs\n", replayed);
  // An empty corpus means a wrong path, not a pass.
  return replayed > 0 ? 0 : 1;
}
