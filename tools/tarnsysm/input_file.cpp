// Tarnsysm tool: reading the input drawing whole into memory, with bounds.
// read(2) on a descriptor works the same for files, pipes and devices; fstat tells a regular
// file's size up front so an oversized one is refused before a byte is read.
#include "input_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "drawing.h"

namespace tarnsysm::tool {

namespace {

// Closes the descriptor on every way out of readInputFile.
struct Descriptor {
  int fd;
  ~Descriptor() {
    if (fd >= 0)
      close(fd);
  }
};

}  // namespace

std::string readInputFile(const std::string& path) {
  auto fail = [&](const std::string& what) { throw UserError("'" + path + "': " + what); };
  Descriptor in{open(path.c_str(), O_RDONLY | O_CLOEXEC)};
  if (in.fd < 0)
    throw UserError("cannot open '" + path + "': " + std::strerror(errno));
  struct stat info;
  if (fstat(in.fd, &info) != 0)
    fail(std::strerror(errno));
  if (S_ISDIR(info.st_mode))
    fail("it is a directory");
  const std::string tooLarge =
      "larger than the " + std::to_string(kLargestInputBytes >> 20) + " MiB the tool reads";
  if (S_ISREG(info.st_mode) && static_cast<std::size_t>(info.st_size) > kLargestInputBytes)
    fail(tooLarge);

  std::string text;
  std::size_t lineLength = 0;
  std::size_t lineNumber = 1;
  char buffer[1 << 16];
  for (;;) {
    const ssize_t got = read(in.fd, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR)
      continue;
    if (got < 0)
      fail(std::string("read error: ") + std::strerror(errno));
    if (got == 0)
      break;
    if (text.size() + static_cast<std::size_t>(got) > kLargestInputBytes)
      fail(tooLarge);
    // Binary DXF opens with this sentinel; its records are not lines, so say what it is before
    // the line check misreads it.
    const char sentinel[] = "AutoCAD Binary DXF";
    if (text.empty() && static_cast<std::size_t>(got) >= sizeof sentinel - 1 &&
        std::memcmp(buffer, sentinel, sizeof sentinel - 1) == 0) {
      fail("binary DXF is not supported (save the drawing as ASCII DXF)");
    }
    // Line lengths are checked as the bytes arrive, so an endless line (a device of zeros)
    // stops at once.
    for (ssize_t i = 0; i < got; ++i) {
      if (buffer[i] == '\n') {
        lineLength = 0;
        ++lineNumber;
      } else if (buffer[i] != '\r' && ++lineLength > kLongestInputLine) {
        fail("line " + std::to_string(lineNumber) + " is longer than " +
             std::to_string(kLongestInputLine) + " characters");
      }
    }
    text.append(buffer, static_cast<std::size_t>(got));
  }
  return text;
}

}  // namespace tarnsysm::tool
