#include "desktop/file_panels.h"

#include "desktop/panel_icons.h"
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

/// The kind whose filter was chosen, as the panel tells it: with its patterns or without.
qsizetype kindOf(const SavePanel& panel, const QString& filter) {
  for (qsizetype kind = 0; kind < panel.kinds.size(); ++kind)
    if (filter == panel.kinds[kind] || filter.startsWith(panel.kinds[kind] + u" ("_s)) return kind;
  return 0;
}

QString usedOr(const QString& used, QStandardPaths::StandardLocation location) {
  for (const QString& folder : {used, QStandardPaths::writableLocation(location)})
    if (!folder.isEmpty() && QFileInfo(folder).isDir()) return folder;
  return QStandardPaths::writableLocation(QStandardPaths::HomeLocation);
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
  explicit DesktopFilePanels(QWidget* window) : window_(window) {}

  void save(const SavePanel& panel, SaveDone done) override {
    QStringList filters;
    for (const QString& kind : panel.kinds) filters.append(nameFilter(kind, {panel.suffix}));
    QFileDialog* dialog =
        makeDialog(panel.title, usedOr(saveFolder_, QStandardPaths::MoviesLocation), filters);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(panel.suffix);
    // The dialog would ask about the name as typed, and in an event loop of its own.
    dialog->setOption(QFileDialog::DontConfirmOverwrite);
    dialog->selectFile(panel.proposedName);
    dialog->selectNameFilter(filters[panel.proposedKind]);
    show(dialog, [this, dialog, panel, done = std::move(done)](const std::optional<QString>& path) {
      if (path)
        finishSaving(panel, {*path, kindOf(panel, dialog->selectedNameFilter())}, done);
      else
        done({});
    });
  }

  void open(const OpenPanel& panel, Done done) override {
    QFileDialog* dialog = makeDialog(panel.title, usedOr(openFolder_, QStandardPaths::PicturesLocation),
                                     {nameFilter(panel.kind, panel.suffixes)});
    if (panel.preview) showPreviews(*dialog, panel.suffixes, panel.preview);
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFile);
    show(dialog, [done = std::move(done)](const std::optional<QString>& path) {
      if (path) openFolder_ = QFileInfo(*path).absolutePath();
      done(path);
    });
  }

 private:
  QFileDialog* makeDialog(const QString& title, const QString& folder, const QStringList& filters) {
    auto* dialog = new QFileDialog(window_, title, folder);
    showPreviews(*dialog, {}, {});
    dialog->setOption(QFileDialog::HideNameFilterDetails);
    dialog->setNameFilters(filters);
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
  void finishSaving(const SavePanel& panel, ChosenFile file, const SaveDone& done) {
    saveFolder_ = QFileInfo(file.path).absolutePath();
    const QString ending = u'.' + panel.suffix;
    if (!file.path.endsWith(ending, Qt::CaseInsensitive)) file.path += ending;
    if (!QFileInfo::exists(file.path)) return done(file);

    const QString name = QFileInfo(file.path).fileName();
    auto* question = new QMessageBox(QMessageBox::NoIcon, panel.title, u"%1 already exists."_s.arg(name),
                                     QMessageBox::Yes | QMessageBox::No, window_);
    question->setInformativeText(u"Do you want to replace it?"_s);
    question->button(QMessageBox::Yes)->setText(u"Replace"_s);
    question->button(QMessageBox::No)->setText(u"Cancel"_s);
    question->setDefaultButton(QMessageBox::No);
    connect(question, &QDialog::finished, this, [this, question, panel, file, name, done](int answer) {
      question->deleteLater();
      if (lacksWindowManager()) window_->activateWindow();
      if (answer == QMessageBox::Yes) return done(file);
      SavePanel again = panel;
      again.proposedName = name;
      again.proposedKind = file.kind;
      save(again, done);
    });
    question->open();
  }

  QWidget* window_;
  // Where files were last chosen, by whichever window.
  static inline QString saveFolder_, openFolder_;
};

}  // namespace

std::unique_ptr<FilePanels> makeFilePanels(QWidget* window) {
  return std::make_unique<DesktopFilePanels>(window);
}

}  // namespace brisklet
