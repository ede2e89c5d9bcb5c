// Tarnsysm tool: output files that appear whole or not at all.
// Each is written under a temporary name beside its target and renamed into place at the end.
#pragma once

#include <string>

namespace tarnsysm::tool {

class PendingFile {
 public:
  /// Creates an empty temporary file in the target's directory. Throws std::runtime_error
  /// naming the target when that directory cannot take it.
  explicit PendingFile(std::string target);
  /// Removes the temporary file unless it was committed.
  ~PendingFile();
  PendingFile(const PendingFile&) = delete;
  PendingFile& operator=(const PendingFile&) = delete;

  /// Where to write the contents.
  const std::string& temporaryPath() const { return temporary_; }
  const std::string& target() const { return target_; }

  /// Moves the temporary file onto the target (replacing it). Throws std::runtime_error.
  void commit();

 private:
  std::string target_;
  std::string temporary_;
  bool committed_ = false;
};

}  // namespace tarnsysm::tool
