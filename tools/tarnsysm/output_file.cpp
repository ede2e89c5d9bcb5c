// Tarnsysm tool: output files that appear whole or not at all, and never replace what they
// should not. rename() within one directory replaces the target atomically on POSIX file
// systems; the temporary file is synced first so that a full disk or quota shows before it.
#include "output_file.h"

#include <fcntl.h>
#include <limits.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace tarnsysm::tool {

namespace {

std::string directoryOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  if (slash == std::string::npos)
    return ".";
  return slash == 0 ? "/" : path.substr(0, slash);
}

std::string baseNameOf(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

// Symbolic links followed this many times at most, as the kernel does.
constexpr int kMostLinks = 40;

// Writes all of `bytes` to fd, resuming after interruptions and partial writes; errno is set
// when it returns false.
bool writeAll(int fd, const std::string& bytes) {
  std::size_t done = 0;
  while (done < bytes.size()) {
    const ssize_t wrote = write(fd, bytes.data() + done, bytes.size() - done);
    if (wrote < 0 && errno == EINTR)
      continue;
    if (wrote <= 0)
      return false;
    done += static_cast<std::size_t>(wrote);
  }
  return true;
}

}  // namespace

OutputFile::OutputFile(std::string name) : name_(std::move(name)) {
  auto fail = [&](const std::string& why) {
    throw std::runtime_error("cannot write '" + name_ + "': " + why);
  };
  if (name_ == "-") {
    kind_ = Kind::kStandardOutput;
    struct stat info;
    exists_ = fstat(STDOUT_FILENO, &info) == 0;
    device_ = info.st_dev;
    inode_ = info.st_ino;
    canonical_ = "-";
    return;
  }
  if (name_.empty() || name_.back() == '/')
    throw std::runtime_error("'" + name_ + "' is not a file name");

  // An existing target: stat follows every link, the kernel's own (/dev/stdout) included.
  struct stat info;
  if (stat(name_.c_str(), &info) == 0) {
    if (S_ISDIR(info.st_mode))
      fail("it is a directory");
    exists_ = true;
    device_ = info.st_dev;
    inode_ = info.st_ino;
    mode_ = info.st_mode & 07777;
    owner_ = info.st_uid;
    group_ = info.st_gid;
    if (!S_ISREG(info.st_mode)) {
      // A device, FIFO or socket: written through its name, never replaced.
      kind_ = Kind::kDirect;
      target_ = canonical_ = name_;
      return;
    }
    // Renaming over a file needs only the folder's permission: a file its owner made read-only
    // is not to be replaced.
    if (access(name_.c_str(), W_OK) != 0)
      fail(std::strerror(errno));
    char* real = realpath(name_.c_str(), nullptr);
    if (real == nullptr)
      fail(std::strerror(errno));
    target_ = canonical_ = real;
    free(real);
    return;
  }
  if (errno != ENOENT)
    fail(std::strerror(errno));

  // A new file, perhaps named through a link that points nowhere yet: follow the links by hand
  // to the path to create, so that the link stays.
  target_ = name_;
  for (int links = 0; lstat(target_.c_str(), &info) == 0 && S_ISLNK(info.st_mode); ++links) {
    if (links == kMostLinks)
      fail("too many levels of symbolic links");
    std::vector<char> link(PATH_MAX + 1);
    const ssize_t length = readlink(target_.c_str(), link.data(), PATH_MAX);
    if (length <= 0)
      fail(std::strerror(errno));
    const std::string to(link.data(), static_cast<std::size_t>(length));
    target_ = to.front() == '/' ? to : directoryOf(target_) + "/" + to;
  }
  char* directory = realpath(directoryOf(target_).c_str(), nullptr);
  if (directory == nullptr)
    fail(std::strerror(errno));
  canonical_ = std::string(directory) + "/" + baseNameOf(target_);
  free(directory);
}

OutputFile::~OutputFile() {
  if (!committed_ && !temporary_.empty())
    unlink(temporary_.c_str());
}

bool OutputFile::isFile(dev_t device, ino_t inode) const {
  return exists_ && device_ == device && inode_ == inode;
}

bool OutputFile::sameAs(const OutputFile& other) const {
  return canonical_ == other.canonical_ || (other.exists_ && isFile(other.device_, other.inode_));
}

void OutputFile::prepare(std::string contents) {
  contents_ = std::move(contents);
  if (kind_ != Kind::kReplace)
    return;
  std::string pattern = directoryOf(target_) + "/." + baseNameOf(target_) + ".XXXXXX";
  std::vector<char> temporary(pattern.begin(), pattern.end());
  temporary.push_back('\0');
  const int fd = mkstemp(temporary.data());
  if (fd < 0)
    throw std::runtime_error("cannot write '" + name_ + "': " + std::strerror(errno));
  temporary_ = temporary.data();
  // mkstemp makes the file private: give it the permissions (and, where allowed, the owner) of
  // the file it replaces, or those a new file would get.
  if (exists_ && fchown(fd, owner_, group_) != 0) {
    // Not the owner's to give away (only root may): the new file stays ours.
  }
  mode_t mode = mode_;
  if (!exists_) {
    const mode_t mask = umask(0);
    umask(mask);
    mode = 0666 & ~mask;
  }
  const bool written = fchmod(fd, mode) == 0 && writeAll(fd, contents_) && fsync(fd) == 0;
  const int error = errno;
  if (close(fd) != 0 || !written) {
    const int reported = written ? errno : error;
    unlink(temporary_.c_str());
    temporary_.clear();
    throw std::runtime_error("cannot write '" + name_ + "': " + std::strerror(reported));
  }
}

void OutputFile::commit() {
  auto fail = [&]() {
    throw std::runtime_error("cannot write '" + name_ + "': " + std::strerror(errno));
  };
  if (kind_ == Kind::kReplace) {
    if (std::rename(temporary_.c_str(), target_.c_str()) != 0)
      fail();
    committed_ = true;
    return;
  }
  if (kind_ == Kind::kStandardOutput) {
    if (!writeAll(STDOUT_FILENO, contents_))
      fail();
    return;
  }
  const int fd = open(target_.c_str(), O_WRONLY | O_CLOEXEC);
  if (fd < 0)
    fail();
  const bool written = writeAll(fd, contents_);
  const int error = errno;
  if (close(fd) != 0 || !written) {
    if (!written)
      errno = error;
    fail();
  }
}

}  // namespace tarnsysm::tool
