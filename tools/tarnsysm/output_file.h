// Tarnsysm tool: output files that appear whole or not at all, and never replace what they
// should not.
// A regular file (or a new one) is written under a temporary name beside it and renamed into
// place at the end; a symbolic link is followed to the file it names, so the link stays; a
// device node or FIFO is written directly, never replaced; "-" is standard output.
#pragma once

#include <sys/types.h>

#include <string>

namespace tarnsysm::tool {

class OutputFile {
 public:
  /// Settles where `name` goes (following symbolic links), writing nothing. Throws
  /// std::runtime_error naming it when it is a directory, an existing file we may not write, or
  /// cannot be looked up.
  explicit OutputFile(std::string name);
  /// Removes the temporary file unless it was committed.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  const std::string& name() const { return name_; }
  /// True when this output would write the existing file with this device and inode.
  bool isFile(dev_t device, ino_t inode) const;
  /// True when both outputs would write the same file (or both standard output).
  bool sameAs(const OutputFile& other) const;

  /// Writes the contents under a temporary name (outputs that are replaced) or keeps them for
  /// commit() (standard output, devices, FIFOs). Every write, the sync and the close are checked;
  /// on failure the temporary file is removed and std::runtime_error names the output and why.
  void prepare(std::string contents);
  /// Writes directly, or renames the temporary file onto the target. Throws std::runtime_error.
  void commit();
  /// True when commit() writes directly (it cannot be undone, so such outputs go first).
  bool direct() const { return kind_ != Kind::kReplace; }

 private:
  enum class Kind { kStandardOutput, kDirect, kReplace };
  std::string name_;
  std::string target_;     // the path written or replaced, symbolic links followed
  std::string canonical_;  // target_ with its directory resolved, to compare new files
  Kind kind_ = Kind::kReplace;
  bool exists_ = false;
  dev_t device_ = 0;
  ino_t inode_ = 0;
  mode_t mode_ = 0;
  uid_t owner_ = 0;
  gid_t group_ = 0;
  std::string contents_;
  std::string temporary_;
  bool committed_ = false;
};

}  // namespace tarnsysm::tool
