#pragma once

#include <QString>
#include <memory>

namespace brisklet {

/// The desktop's file manager.
class FileManager {
 public:
  virtual ~FileManager() = default;

  /// Shows a file, selected, in its folder. Returns at once; silent where there is no file manager.
  virtual void reveal(const QString& path) = 0;
};

/// Asks the file manager over D-Bus; where none answers, opens the folder.
[[nodiscard]] std::unique_ptr<FileManager> makeFileManager();

}  // namespace brisklet
