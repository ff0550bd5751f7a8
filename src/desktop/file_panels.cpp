#include "desktop/file_panels.h"

#include "desktop/window_manager.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHeaderView>
#include <QMessageBox>
#include <QObject>
#include <QPushButton>
#include <QSplitter>
#include <QStandardPaths>
#include <QTreeView>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// "Photos (*.jpg *.JPG *.png *.PNG)": some desktops match patterns by case.
QString nameFilter(const QString& kind, const QStringList& suffixes) {
  QStringList patterns;
  for (const QString& suffix : suffixes) patterns << u"*."_s + suffix << u"*."_s + suffix.toUpper();
  return u"%1 (%2)"_s.arg(kind, patterns.join(u' '));
}

QString standardFolder(QStandardPaths::StandardLocation location) {
  const QString folder = QStandardPaths::writableLocation(location);
  return QFileInfo(folder).isDir() ? folder : QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
}

/// Gives names and places the room that they need, where the panel is not the desktop's own.
void arrange(QFileDialog& dialog) {
  const auto* files = dialog.findChild<QTreeView*>();
  auto* columns = dialog.findChild<QSplitter*>();
  if (!files || !columns) return;
  dialog.resize(760, 500);
  columns->setSizes({170, 560});
  files->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
  files->header()->setSectionResizeMode(0, QHeaderView::Stretch);
}

class DesktopFilePanels final : public QObject, public FilePanels {
 public:
  explicit DesktopFilePanels(QWidget* window)
      : window_(window),
        saveFolder_(standardFolder(QStandardPaths::MoviesLocation)),
        openFolder_(standardFolder(QStandardPaths::PicturesLocation)) {}

  void save(const SavePanel& panel, Done done) override {
    QFileDialog* dialog = makeDialog(panel.title, saveFolder_, panel.kind, {panel.suffix});
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(panel.suffix);
    // The dialog would ask about the name as typed, and in an event loop of its own.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    dialog->selectFile(panel.proposedName);
    show(dialog, [this, panel, done = std::move(done)](const std::optional<QString>& path) {
      if (path)
        finishSaving(panel, *path, done);
      else
        done({});
    });
  }

  void open(const OpenPanel& panel, Done done) override {
    QFileDialog* dialog = makeDialog(panel.title, openFolder_, panel.kind, panel.suffixes);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFile);
    show(dialog, [this, done = std::move(done)](const std::optional<QString>& path) {
      if (path) openFolder_ = QFileInfo(*path).absolutePath();
      done(path);
    });
  }

 private:
  QFileDialog* makeDialog(const QString& title, const QString& folder, const QString& kind,
                          const QStringList& suffixes) {
    auto* dialog = new QFileDialog(window_, title, folder);
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setNameFilter(nameFilter(kind, suffixes));
    arrange(*dialog);
    return dialog;
  }

  /// Modal to the window, without an event loop of its own.
  void show(QFileDialog* dialog, Done done) {
    connect(dialog, &QDialog::finished, this, [this, dialog, done = std::move(done)](int result) {
      dialog->deleteLater();
      // Nobody else passes the keyboard on.
      if (lacksWindowManager()) window_->activateWindow();
      const QStringList files = dialog->selectedFiles();
      if (result == QDialog::Accepted && !files.isEmpty() && !files.first().isEmpty())
        done(files.first());
      else
        done({});
    });
    dialog->open();
  }

  /// Completes the name, and asks before a file is replaced. When the user declines, the panel comes back.
  void finishSaving(const SavePanel& panel, const QString& chosen, const Done& done) {
    saveFolder_ = QFileInfo(chosen).absolutePath();
    const QString ending = u'.' + panel.suffix;
    const QString path = chosen.endsWith(ending, Qt::CaseInsensitive) ? chosen : chosen + ending;
    if (!QFileInfo::exists(path)) return done(path);

    const QString name = QFileInfo(path).fileName();
    auto* question = new QMessageBox(QMessageBox::NoIcon, panel.title, u"%1 already exists."_s.arg(name),
                                     QMessageBox::Yes | QMessageBox::No, window_);
    question->setInformativeText(u"Do you want to replace it?"_s);
    question->button(QMessageBox::Yes)->setText(u"Replace"_s);
    question->button(QMessageBox::No)->setText(u"Cancel"_s);
    question->setDefaultButton(QMessageBox::No);
    connect(question, &QDialog::finished, this, [this, question, panel, path, name, done](int answer) {
      question->deleteLater();
      if (lacksWindowManager()) window_->activateWindow();
      if (answer == QMessageBox::Yes) return done(path);
      SavePanel again = panel;
      again.proposedName = name;
      save(again, done);
    });
    question->open();
  }

  QWidget* window_;
  QString saveFolder_;
  QString openFolder_;
};

}  // namespace

std::unique_ptr<FilePanels> makeFilePanels(QWidget* window) {
  return std::make_unique<DesktopFilePanels>(window);
}

}  // namespace brisklet
