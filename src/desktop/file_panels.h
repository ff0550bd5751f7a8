#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>

class QWidget;

namespace brisklet {

struct SavePanel {
  QString title;
  QString proposedName;
  /// What the files are called, for example "MPEG-4 movies".
  QString kind;
  /// The only file name ending, without a dot. A chosen name without it is completed.
  QString suffix;
};

struct OpenPanel {
  QString title;
  QString kind;
  /// The file name endings that are offered, without dots.
  QStringList suffixes;
};

/// Asks the user for a file. A panel is modal to its window: the window takes no input until it closes. The
/// event loop goes on meanwhile.
class FilePanels {
 public:
  /// Called once, with the chosen path or with nothing when the user does not confirm. Not called when the
  /// panels are destroyed first.
  using Done = std::function<void(std::optional<QString> path)>;

  virtual ~FilePanels() = default;

  /// Asks where to write a file. When there is one already, the user has agreed to replace it.
  virtual void save(const SavePanel& panel, Done done) = 0;
  /// Asks for one file that exists.
  virtual void open(const OpenPanel& panel, Done done) = 0;
};

/// The desktop's panels, over `window`, which outlives them.
[[nodiscard]] std::unique_ptr<FilePanels> makeFilePanels(QWidget* window);

}  // namespace brisklet
