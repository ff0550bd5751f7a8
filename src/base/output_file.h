#pragma once

#include "base/error.h"
#include "base/unique_fd.h"

#include <QByteArrayView>
#include <QString>
#include <filesystem>

namespace brisklet {

/// The sentence that a file could not be written; `cause` goes without a full stop.
[[nodiscard]] Error couldNotWrite(const QString& path, const QString& cause);

/// Where a file written to this path stands: absolute, behind all links, one that leads nowhere yet included.
/// Throws `Error` for what a file cannot replace: a folder, a pipe, a device.
[[nodiscard]] std::filesystem::path outputPlace(const QString& path);

/// An empty file in a folder, readable and writable; -1 and `errno` if there can be none. It has no name
/// where the file system can do that, else `hiddenName` is set to one.
[[nodiscard]] UniqueFd makeHiddenFile(const std::filesystem::path& folder, std::filesystem::path& hiddenName);

/// A file that takes its name when it is complete: whatever ends the program, what has the name is whole.
/// Until then it has none, or a hidden one beside its place, and one that is dropped is gone. It has the
/// permissions of the file that it replaces. Everything here throws `Error`, which names the file and the
/// cause.
class OutputFile {
 public:
  explicit OutputFile(const QString& path);
  OutputFile(OutputFile&& other) noexcept;
  OutputFile& operator=(OutputFile&&) = delete;
  ~OutputFile();

  [[nodiscard]] const QString& path() const { return path_; }
  [[nodiscard]] std::filesystem::path folder() const { return place_.parent_path(); }
  [[nodiscard]] int fd() const { return fd_.get(); }

  /// Takes away the file that would be replaced, before its time.
  void removeFormer() const;
  void append(QByteArrayView bytes);
  void commit();

 private:
  QString path_;
  std::filesystem::path place_;
  std::filesystem::path hiddenName_;
  UniqueFd fd_;
  int64_t bytes_ = 0;
};

}  // namespace brisklet
