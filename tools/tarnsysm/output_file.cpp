// Tarnsysm tool: output files that appear whole or not at all.
// rename() within one directory replaces the target atomically on POSIX file systems.
#include "output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace tarnsysm::tool {

namespace {

std::string directoryOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  if (slash == std::string::npos)
    return ".";
  if (slash == 0)
    return "/";
  return path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

std::string failure(const std::string& what, const std::string& path) {
  return what + " '" + path + "': " + std::strerror(errno);
}

}  // namespace

PendingFile::PendingFile(std::string target) : target_(std::move(target)) {
  if (target_.empty() || target_.back() == '/') {
    throw std::runtime_error("'" + target_ + "' is not a file name");
  }
  struct stat existing;
  if (stat(target_.c_str(), &existing) == 0 && S_ISDIR(existing.st_mode)) {
    throw std::runtime_error("cannot write '" + target_ + "': it is a directory");
  }
  std::string pattern = directoryOf(target_) + "/." + baseNameOf(target_) + ".XXXXXX";
  std::vector<char> name(pattern.begin(), pattern.end());
  name.push_back('\0');
  const int fd = mkstemp(name.data());
  if (fd < 0)
    throw std::runtime_error(failure("cannot write", target_));
  // mkstemp makes the file private; give it the permissions a newly created file would get.
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(fd, 0666 & ~mask);
  close(fd);
  temporary_ = name.data();
}

PendingFile::~PendingFile() {
  if (!committed_ && !temporary_.empty())
    std::remove(temporary_.c_str());
}

void PendingFile::commit() {
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) {
    throw std::runtime_error(failure("cannot write", target_));
  }
  committed_ = true;
}

}  // namespace tarnsysm::tool
