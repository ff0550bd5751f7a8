#include "studio/studio_window.h"

#include "base/error.h"
#include "studio/alert.h"
#include "studio/controls/chip.h"
#include "studio/controls/column_area.h"
#include "studio/controls/focus_mark.h"
#include "studio/controls/inspector_block.h"
#include "studio/controls/palette.h"
#include "studio/controls/rule.h"
#include "studio/controls/studio_button.h"
#include "studio/controls/studio_field.h"
#include "studio/picture_chip.h"
#include "studio/stage.h"
#include "studio/stage_backdrop.h"
#include "studio/timeline_list.h"
#include "studio/top_bar.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QCoroTimer>
#include <QPainter>
#include <QPointer>
#include <QTemporaryDir>
#include <QTest>
#include <chrono>

using namespace std::chrono_literals;

namespace brisklet {
namespace {

/// Answers at once.
struct FixedPanels : FilePanels {
  void save(const SavePanel&, SaveDone done) override { done(ChosenFile{"/tmp/movie.mp4"}); }
  void open(const OpenPanel&, Done done) override { done({}); }
};

struct StudioWindowTest : testing::Test {
  StudioWindowTest() {
    StudioView::Services services;
    services.exportMovie = [this](SequenceDocument, MovieStyle, QString, StudioView::Progress progress,
                                  std::stop_token stop) { return runExport(progress, stop); };
    window = new StudioWindow(services, [](QWidget*) { return std::make_unique<FixedPanels>(); });
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->resize(StudioWindow::defaultSize);
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
  }
  ~StudioWindowTest() override {
    delete window;
    QTest::qWait(5);  // until an export has stopped
  }

  QCoro::Task<> runExport(StudioView::Progress progress, std::stop_token stop) {
    progress(42, 100);
    while (!exportEnds && !stop.stop_requested()) co_await QCoro::sleepFor(1ms);
    if (stop.stop_requested()) throw Error("Stopped.");
    if (!exportFailure.isEmpty()) throw Error(exportFailure);
  }

  [[nodiscard]] StudioView& view() const { return window->view(); }
  template <class Widget>
  [[nodiscard]] Widget* the() const {
    return window->findChild<Widget*>();
  }
  /// The widget with this text or accessible name, if there is one.
  template <class Widget>
  [[nodiscard]] Widget* named(const QString& name) const {
    for (Widget* each : window->findChildren<Widget*>())
      if (each->text() == name || each->accessibleName() == name) return each;
    return nullptr;
  }
  [[nodiscard]] StudioButton* button(const QString& title) const { return named<StudioButton>(title); }
  [[nodiscard]] StudioLineEdit* field(const QString& title) const { return named<StudioLineEdit>(title); }
  [[nodiscard]] Chip* chip(const QString& name) const { return named<Chip>(name); }
  [[nodiscard]] QRect place(const QWidget* widget) const {
    return {widget->mapTo(window, QPoint()), widget->size()};
  }
  void addPings(int count) {
    for (int i = 0; i < count; ++i) view().addPing();
    settle();
  }
  /// Lets layouts, deferred deletions and reactions happen.
  static void settle() { QTest::qWait(1); }
  void press(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }
  void clickRow(qsizetype row) {
    QTest::mouseClick(the<TimelineList>(), Qt::LeftButton, {}, the<TimelineList>()->rowRect(row).center());
    settle();
  }
  void key(int key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window->windowHandle(), static_cast<Qt::Key>(key), modifiers);
    settle();
  }
  void type(const QString& text) { QTest::keyClicks(QApplication::focusWidget(), text); }
  /// Whether a control has the focus, and shows whether the keyboard brought it.
  [[nodiscard]] static bool isFocused(const QWidget* control, bool byKeyboard = true) {
    return control->hasFocus() && control->findChild<FocusMark*>()->isShown() == byKeyboard;
  }
  [[nodiscard]] QColor pixel(const QPoint& at) const { return window->grab().toImage().pixelColor(at); }

  QPointer<StudioWindow> window;
  bool exportEnds = false;
  QString exportFailure;
};

TEST_F(StudioWindowTest, partsHaveTheirPlaces) {
  settle();
  const QList<ColumnArea*> columns = window->findChildren<ColumnArea*>();
  const QList<InspectorBlock*> blocks = window->findChildren<InspectorBlock*>();
  EXPECT_EQ(place(the<TopBar>()), QRect(0, 0, 1320, 52));
  EXPECT_EQ(place(the<Rule>()), QRect(0, 52, 1320, 1));
  EXPECT_EQ(place(columns[0]), QRect(0, 53, 288, 807));
  EXPECT_EQ(place(columns[1]), QRect(1032, 53, 288, 807));
  EXPECT_EQ(place(the<Stage>()), QRect(288, 53, 744, 807));
  EXPECT_NEAR(phoneRect(the<Stage>()->size()).height(), 727, 1e-9);
  EXPECT_EQ(button("Play")->x(), button("New")->geometry().right() + 1 + 12);
  EXPECT_EQ(place(button("New")), QRect(button("New")->x(), 10, button("New")->width(), 32));
  // Margins, label, spacing, content: 18 + 13 + 12 + content + 18, five wallpapers and six apps in a row.
  EXPECT_EQ(place(blocks[3]), QRect(0, 412, 288, 61 + 2 * 55 + 34 + 2 * 10));
  EXPECT_EQ(place(chip("Upload lock screen photo")), QRect(18 + 4 * 52, 96, 44, 44));
  EXPECT_EQ(place(chip("Comment")), QRect(18 + 123 + 6, 298, 123, 28));
  EXPECT_EQ(place(button("Add ping")), QRect(18, 412 + 43 + 130, 252, 34));
  EXPECT_EQ(window->minimumSize(), QSize(1180, 780));
  EXPECT_EQ(StudioWindow::openingSize({1280, 800}), QSize(1280, 800));
  EXPECT_EQ(StudioWindow::openingSize({1024, 600}), QSize(1180, 780));
}

TEST_F(StudioWindowTest, whatIsSelectedAndWhatIsOfNoUseIsSeen) {
  const auto leftEdge = [this](QWidget* widget, int x) {
    return pixel({place(widget).left() + x, place(widget).center().y()});
  };
  EXPECT_EQ(leftEdge(chip("One"), 1), Studio::ink);
  EXPECT_NE(leftEdge(chip("One"), 2), Studio::ink);
  EXPECT_EQ(leftEdge(chip("Two"), 0), Studio::line);
  // Ink at 40 % on white.
  EXPECT_NEAR(leftEdge(button("Export"), 4).red(), 255 - 0.4 * (255 - 17), 1);
}

TEST_F(StudioWindowTest, fieldsFollowTheTypistAndTidyUpAfterwards) {
  StudioLineEdit *sender = field("Sender"), *delay = field("Lands at (seconds)");
  press(sender);
  EXPECT_TRUE(isFocused(sender, false));
  sender->setCursorPosition(1);
  type("x");
  EXPECT_EQ(view().draftTitle(), "@xmaya");
  EXPECT_EQ(sender->cursorPosition(), 2);
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(view().draftTitle(), "@maya");
  QApplication::clipboard()->setText("a\r\nb\u2028c\td" + QString(90, u'w'));
  key(Qt::Key_A, Qt::ControlModifier);
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(view().draftTitle(), "a  b c d" + QString(90, u'w')) << "as it is seen in one line";
  press(the<Stage>());
  EXPECT_EQ(sender->cursorPosition(), 0) << "A field that is left shows its beginning.";

  addPings(1);
  clickRow(0);
  EXPECT_EQ(delay->text(), "0.7");
  delay->setFocus();
  delay->selectAll();
  type("01,50x");
  EXPECT_EQ(delay->text(), "01,50x");
  EXPECT_EQ(view().document().notifications.first().delayMs, 1500);
  key(Qt::Key_Right, Qt::AltModifier);
  EXPECT_EQ(delay->text(), "1.6") << "It follows what others do.";
}

TEST_F(StudioWindowTest, keysThatHandsKnow) {
  TimelineList* list = the<TimelineList>();
  StudioLineEdit* text = field("Text");
  const auto messages = [this] {
    QStringList all;
    for (const Ping& ping : view().document().notifications) all += ping.message;
    return all.join(' ');
  };
  for (const QString word : {"one", "two"}) {
    text->setFocus();
    text->selectAll();
    type(word);
    key(Qt::Key_Return);
    EXPECT_TRUE(text->hasFocus() && text->selectedText() == word) << "The next one is typed over it.";
    key(Qt::Key_Z, Qt::ControlModifier);
    key(Qt::Key_Y, Qt::ControlModifier);
  }
  chip("Instagram")->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Return, Qt::ControlModifier);
  EXPECT_EQ(messages(), "one two two");
  clickRow(0);
  key(Qt::Key_D, Qt::ControlModifier);
  EXPECT_EQ(messages(), "one two two one");
  EXPECT_TRUE(list->isSelected(3)) << "What comes is worked on next.";
  text->setFocus();
  key(Qt::Key_Return);
  EXPECT_TRUE(window->hasFocus()) << "A ping's text is done.";
  key(Qt::Key_Escape);
  clickRow(1);
  key(Qt::Key_X, Qt::ControlModifier);
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(messages(), "one two one two");
  QApplication::clipboard()->setText("{\"notifications\": 7}");
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(view().error(), "The clipboard holds no pings: \"notifications\" must be an array.");
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(messages(), "one two one two") << "An alert is open.";
  key(Qt::Key_Return);

  // On the stage the newest card is on top.
  const QPoint card(660, 300);
  QTest::mouseMove(window->windowHandle(), card);
  EXPECT_EQ(the<Stage>()->cursor().shape(), Qt::PointingHandCursor);
  for (int clicks = 0; clicks < 2; ++clicks) {
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, card);
    EXPECT_TRUE(list->isSelected(3));
  }
  QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, {300, 300});
  EXPECT_FALSE(view().selectedPingId());
  QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, card);
  key(Qt::Key_Delete);
  EXPECT_EQ(messages(), "one two one");
  key(Qt::Key_Space);
  EXPECT_TRUE(view().isPlaying());
  key(Qt::Key_F1);
  EXPECT_TRUE(the<Alert>()->isOpen());
  key(Qt::Key_Escape);
  key(Qt::Key_E, Qt::ControlModifier);
  EXPECT_TRUE(view().exporting());
}

TEST_F(StudioWindowTest, tabReachesEveryGroupOnceInReadingOrderAndArrowsWalkIt) {
  addPings(1);
  window->setFocus();
  QStringList reached;
  for (int i = 0; i < 15; ++i) {
    key(Qt::Key_Tab);
    const QWidget* focused = QApplication::focusWidget();
    const auto* pressable = qobject_cast<const QAbstractButton*>(focused);
    reached.append(pressable && !pressable->text().isEmpty() ? pressable->text() : focused->accessibleName());
    EXPECT_TRUE(isFocused(focused)) << reached.last().toStdString();
  }
  EXPECT_EQ(reached.join(", "),
            "Title, New, Play, Export, Minimise, Zoom, Close, One, TikTok, Video like, "
            "Sender, Text, Add ping, Pings, Title");
  chip("Video like")->setFocus(Qt::TabFocusReason);
  for (const int walked : {Qt::Key_Down, Qt::Key_Right, Qt::Key_Up}) key(walked);
  EXPECT_TRUE(isFocused(chip("Comment")));
  EXPECT_EQ(view().selectedTypeId(), "like");
  key(Qt::Key_Return);
  EXPECT_EQ(view().selectedTypeId(), "comment");
}

TEST_F(StudioWindowTest, keysAndPointerWorkTheTimeline) {
  addPings(40);
  TimelineList* list = the<TimelineList>();
  const auto comesIntoView = [list](qsizetype row) {
    return QTest::qWaitFor([&] { return list->visibleRegion().contains(list->rowRect(row).center()); });
  };
  EXPECT_TRUE(comesIntoView(39));
  EXPECT_FALSE(list->visibleRegion().contains(list->rowRect(0).center()));
  const QString second = list->ping(1).id;
  list->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Home);
  EXPECT_TRUE(comesIntoView(0));
  QTest::qWait(200);  // until it stands still
  QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {},
                     place(list).topLeft() + list->removeRect(0).center());
  EXPECT_EQ(list->rowCount(), 39) << "A double click removes one.";
  key(Qt::Key_Space);
  EXPECT_EQ(view().selectedPingId(), second);
  key(Qt::Key_Escape);
  EXPECT_FALSE(view().selectedPingId());
  QKeyEvent held(QEvent::KeyPress, Qt::Key_Delete, {}, {}, true);
  QApplication::sendEvent(list, &held);
  EXPECT_EQ(list->rowCount(), 39) << "A key that is held removes none.";
  for (int i = 0; i < 40; ++i) key(Qt::Key_Delete);
  EXPECT_EQ(list->rowCount(), 0);
  EXPECT_TRUE(isFocused(button("Add ping")));
}

TEST(PictureChipTest, aPhotoIsMeasuredWhereTheClockIs) {
  const QTemporaryDir folder;
  QImage photo(390, 844, QImage::Format_RGB32);
  PictureChip chip("custom", "Photo");
  for (const bool isLight : {true, false}) {
    photo.fill(isLight ? Qt::black : Qt::white);
    QPainter(&photo).fillRect(60, 30, 270, 180, isLight ? Qt::white : Qt::gray);
    const QString path = folder.filePath(isLight ? "light.png" : "dark.png");
    ASSERT_TRUE(photo.save(path));
    chip.setPhoto(path);
    EXPECT_TRUE(QTest::qWaitFor([&] { return chip.isTooLight() == isLight; }));
  }
}

TEST_F(StudioWindowTest, assistiveTechnologyWorksFieldsAndRows) {
  addPings(1);
  clickRow(0);
  const auto accessible = [](QObject* object) { return QAccessible::queryAccessibleInterface(object); };
  const auto press = [](QAccessibleInterface* on) {
    on->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  };
  accessible(field("Sender"))->setText(QAccessible::Value, "dictated");
  for (QAbstractButton* each : window->findChildren<QAbstractButton*>())
    EXPECT_TRUE(!each->isVisible() || !accessible(each)->text(QAccessible::Name).isEmpty());
  EXPECT_TRUE(accessible(chip("One"))->state().checked && !accessible(chip("Two"))->state().checked);
  QAccessibleInterface *list = accessible(the<TimelineList>()), *row = list->child(0);
  EXPECT_EQ(row->text(QAccessible::Name), "Ping 1, dictated");
  EXPECT_EQ(list->indexOfChild(row), 0);
  EXPECT_TRUE(row->state().selected);
  press(row);
  EXPECT_FALSE(row->state().selected);
  press(row->child(0));
  EXPECT_EQ(list->childCount(), 0);
  EXPECT_FALSE(row->isValid());
}

TEST_F(StudioWindowTest, exportIsSeenOnTheRuleAndItsFailureInAnAlert) {
  addPings(1);
  button("Export")->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  ASSERT_TRUE(button("Exporting") && !button("Exporting")->isEnabled());
  EXPECT_TRUE(named<QLabel>("42%"));
  EXPECT_EQ(pixel({1320 * 42 / 100 - 2, 52}), Studio::ink);
  EXPECT_EQ(pixel({1320 * 42 / 100 + 2, 52}), Studio::line);

  exportFailure = "Could not write the video file.";
  exportEnds = true;
  Alert* alert = the<Alert>();
  ASSERT_TRUE(QTest::qWaitFor([alert] { return alert->isOpen(); }));
  EXPECT_EQ(alert->accessibleName() + ": " + alert->accessibleDescription(),
            "Something went wrong: Could not write the video file.");
  // The window behind takes no input meanwhile.
  key(Qt::Key_Tab);
  window->resize(1320, 861);  // which raises the window's edges
  QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, {1, 400});
  field("Sender")->setFocus();
  EXPECT_EQ(QApplication::focusWidget(), button("OK"));
  EXPECT_EQ(window->childAt(place(button("Add ping")).center()), alert);
  key(Qt::Key_Return);
  EXPECT_TRUE(!alert->isOpen() && view().error().isEmpty());
  EXPECT_TRUE(isFocused(button("Export"))) << "Where the keyboard was.";
  EXPECT_FALSE(named<QLabel>("42%"));
}

TEST_F(StudioWindowTest, closingDuringAnExportAsksFirst) {
  addPings(1);
  press(button("Export"));
  field("Sender")->setFocus();
  field("Sender")->setCursorPosition(3);
  EXPECT_FALSE(window->close());
  key(Qt::Key_Escape);
  EXPECT_TRUE(view().exporting() && field("Sender")->cursorPosition() == 3) << "Who was typing goes on.";
  // An export that fails while the question is asked answers it.
  EXPECT_FALSE(window->close());
  exportEnds = true;
  exportFailure = "The disk is full.";
  ASSERT_TRUE(QTest::qWaitFor([this] { return !view().exporting(); }));
  settle();
  EXPECT_EQ(the<Alert>()->accessibleDescription(), exportFailure) << "Bad news is told before the end.";
  key(Qt::Key_Return);
  exportEnds = false;
  press(button("Export"));
  EXPECT_FALSE(window->close());
  key(Qt::Key_Tab);
  EXPECT_TRUE(isFocused(button("Stop")));
  key(Qt::Key_Space);
  EXPECT_TRUE(QTest::qWaitFor([this] { return window.isNull(); }));
}

TEST_F(StudioWindowTest, playButtonTakesItsFocusBack) {
  addPings(1);
  button("Play")->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  EXPECT_FALSE(button("Export")->hasFocus()) << "The next key must not export.";
  view().player()->stop();
  settle();
  EXPECT_TRUE(button("Play")->hasFocus());
}

}  // namespace
}  // namespace brisklet
