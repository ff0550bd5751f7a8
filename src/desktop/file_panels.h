#pragma once

#include <QImage>
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
  /// What the file may be, for example "MPEG-4 movie", and the place of the one that is chosen at first.
  QStringList kinds;
  qsizetype proposedKind = 0;
  /// The only file name ending, without a dot. A chosen name without it is completed.
  QString suffix;
};

struct ChosenFile {
  QString path;
  /// The place of its kind in the panel's list; the first where a desktop's panel does not tell.
  qsizetype kind = 0;
};

struct OpenPanel {
  QString title;
  QString kind;
  /// The file name endings that are offered, without dots.
  QStringList suffixes;
  /// A small picture of a file's content, made on another thread; null when there is none.
  std::function<QImage(const QString& path)> preview = {};
};

/// Asks the user for a file. A panel is modal to its window: the window takes no input until it closes. The
/// event loop goes on meanwhile.
class FilePanels {
 public:
  /// Called once, with the chosen path or with nothing when the user does not confirm. Not called when the
  /// panels are destroyed first.
  using Done = std::function<void(std::optional<QString> path)>;
  using SaveDone = std::function<void(std::optional<ChosenFile> file)>;

  virtual ~FilePanels() = default;

  /// Asks where to write a file. When there is one already, the user has agreed to replace it.
  virtual void save(const SavePanel& panel, SaveDone done) = 0;
  /// Asks for one file that exists.
  virtual void open(const OpenPanel& panel, Done done) = 0;
};

/// The desktop's panels, over `window`, which outlives them.
[[nodiscard]] std::unique_ptr<FilePanels> makeFilePanels(QWidget* window);

}  // namespace brisklet
