#include "desktop/file_panels.h"

#include "support/printing.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

struct FilePanelsTest : testing::Test {
  FilePanels::Done remember() {
    return [this](const std::optional<QString>& path) { answers.append(path.value_or(u"nothing"_s)); };
  }
  void save() {
    panels->save({.title = u"Export"_s,
                  .proposedName = u"launch.mp4"_s,
                  .kinds = {u"MPEG-4 movie"_s, u"MPEG-4 movie, moving"_s},
                  .suffix = u"mp4"_s},
                 [this](const std::optional<ChosenFile>& file) {
                   answers.append(file ? file->path : u"nothing"_s);
                   kind = file ? file->kind : -1;
                 });
  }
  template <typename Dialog>
  Dialog* shown() {
    Dialog* found = nullptr;
    const auto isShown = [&] {
      for (Dialog* dialog : window.findChildren<Dialog*>())
        if (dialog->isVisible()) found = dialog;
      return found != nullptr;
    };
    return QTest::qWaitFor(isShown) ? found : nullptr;
  }
  /// Types a name in the folder and presses "Save".
  void saveAs(const QString& name) {
    auto* dialog = shown<QFileDialog>();
    ASSERT_TRUE(dialog);
    auto* field = dialog->findChild<QLineEdit*>();
    dialog->setDirectory(folder.path());
    dialog->activateWindow();
    field->setFocus();
    ASSERT_TRUE(QTest::qWaitFor([field] { return field->hasFocus(); }));
    // Key presses would open the list of completions, which takes the keyboard.
    field->setText(name);
    Q_EMIT field->textEdited(name);
    QMetaObject::invokeMethod(dialog, "accept");
  }
  void answer(QMessageBox::StandardButton button) {
    auto* question = shown<QMessageBox>();
    ASSERT_TRUE(question);
    question->button(button)->click();
  }
  void makeFile(const QString& name) {
    QFile file(folder.filePath(name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  }

  QTemporaryDir folder;
  QWidget window;
  std::unique_ptr<FilePanels> panels = makeFilePanels(&window);
  QStringList answers;
  qsizetype kind = -1;
  std::atomic<int> previewed = 0;
  std::function<QImage(const QString&)> preview = [this](const QString& path) {
    previewed += path.endsWith(u".JPG") ? 1 : 100;
    return QImage();
  };
};

TEST_F(FilePanelsTest, theSavePanelProposesANameAndCompletesTheChosenOne) {
  const QString cases[][2] = {
      {u"a.mp4"_s, u"a.mp4"_s}, {u"b"_s, u"b.mp4"_s}, {u"c.v2"_s, u"c.v2.mp4"_s}, {u"D.MP4"_s, u"D.MP4"_s}};
  for (const auto& [typed, name] : cases) {
    save();
    auto* dialog = shown<QFileDialog>();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(QFileInfo(dialog->selectedFiles().value(0)).fileName(), u"launch.mp4");
    EXPECT_EQ(dialog->windowModality(), Qt::WindowModal) << "other windows go on";
    if (typed == u"b") dialog->selectNameFilter(dialog->nameFilters().last());
    saveAs(typed);
    EXPECT_EQ(answers, (QStringList{folder.filePath(name)}));
    EXPECT_EQ(kind, typed == u"b" ? 1 : 0);
    answers.clear();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }
}

TEST_F(FilePanelsTest, aFileIsReplacedOnlyWhenTheUserAgrees) {
  makeFile(u"c.v2.mp4"_s);
  save();
  saveAs(u"c.v2"_s);
  EXPECT_EQ(kind, -1);
  answer(QMessageBox::No);
  EXPECT_TRUE(answers.isEmpty());
  saveAs(u"other.v2"_s);
  EXPECT_EQ(answers, (QStringList{folder.filePath(u"other.v2.mp4"_s)})) << "the panel came back";
  EXPECT_EQ(kind, 0);

  save();
  saveAs(u"c.v2.mp4"_s);
  answer(QMessageBox::Yes);
  EXPECT_EQ(answers.last(), folder.filePath(u"c.v2.mp4"_s));
}

TEST_F(FilePanelsTest, theOpenPanelShowsPreviewsOfTheOfferedKinds) {
  for (const QString& name : {u"photo.JPG"_s, u"other.txt"_s}) makeFile(name);
  panels->open(
      {.title = u"Choose"_s, .kind = u"Photos"_s, .suffixes = {u"jpg"_s, u"heic"_s}, .preview = preview},
      remember());
  auto* dialog = shown<QFileDialog>();
  ASSERT_TRUE(dialog);
  EXPECT_EQ(dialog->nameFilters(), (QStringList{u"Photos (*.jpg *.JPG *.heic *.HEIC)"_s}));
  dialog->setDirectory(folder.path());
  EXPECT_TRUE(QTest::qWaitFor([&] { return previewed == 1; }));
  saveAs(u"photo.JPG"_s);
  EXPECT_EQ(answers, (QStringList{folder.filePath(u"photo.JPG"_s)}));
  panels->open({.title = u"Choose"_s, .kind = u"Photos"_s, .suffixes = {u"jpg"_s}}, remember());
  EXPECT_EQ(shown<QFileDialog>()->directory(), QDir(folder.path())) << "where it was last";
}

}  // namespace
}  // namespace brisklet
