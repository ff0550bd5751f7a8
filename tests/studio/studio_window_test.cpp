#include "studio/studio_window.h"

#include "base/error.h"
#include "model/catalogue.h"
#include "studio/alert.h"
#include "studio/brisklet_app.h"
#include "studio/controls/chip.h"
#include "studio/controls/column_area.h"
#include "studio/controls/focus_mark.h"
#include "studio/controls/inspector_block.h"
#include "studio/controls/palette.h"
#include "studio/controls/rule.h"
#include "studio/controls/studio_button.h"
#include "studio/controls/studio_field.h"
#include "studio/controls/studio_text.h"
#include "studio/stage.h"
#include "studio/timeline_list.h"
#include "studio/top_bar.h"
#include "studio/type_chip.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QClipboard>
#include <QCoroTimer>
#include <QLabel>
#include <QPointer>
#include <QTest>
#include <chrono>

using namespace std::chrono_literals;

namespace brisklet {
namespace {

/// Answers at once, from a window of its own.
struct FixedPanels : FilePanels {
  explicit FixedPanels(QWidget* window) : over(window) {}
  void save(const SavePanel&, SaveDone done) override {
    QWidget panel;
    panel.show();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&panel));
    done(ChosenFile{"/tmp/movie.mp4"});
    over->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(over));
  }
  void open(const OpenPanel&, Done done) override { done({}); }

  QWidget* over;
};

struct StudioWindowTest : testing::Test {
  StudioWindowTest() {
    StudioView::Services services;
    services.exportMovie = [this](SequenceDocument, MovieStyle, QString, StudioView::Progress progress,
                                  std::stop_token stop) { return runExport(progress, stop); };
    window = new StudioWindow(services, [](QWidget* over) { return std::make_unique<FixedPanels>(over); });
    window->setAttribute(Qt::WA_DeleteOnClose);
    window->resize(StudioWindow::defaultSize);
    window->show();
    window->activateWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window));
  }
  ~StudioWindowTest() override { delete window; }

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
  /// The stage once nothing moves on it any more.
  [[nodiscard]] QImage restingStage() const {
    QImage former, now = the<Stage>()->grab().toImage();
    do {
      former = now;
      QTest::qWait(60);
      now = the<Stage>()->grab().toImage();
    } while (now != former);
    return now;
  }
  /// Lets layouts, deferred deletions and reactions happen.
  static void settle() { QTest::qWait(1); }
  void press(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }
  void clickRow(qsizetype row) {
    TimelineList* list = the<TimelineList>();
    QTest::mouseClick(list, Qt::LeftButton, {}, list->rowRect(row).center());
    settle();
  }
  static void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : QApplication::activeWindow(),
                    key, modifiers);
    settle();
  }
  [[nodiscard]] bool isMarked(const QWidget* control) const {
    return control->findChild<FocusMark*>()->isShown();
  }
  static QAccessibleInterface* accessible(QObject* object) {
    return QAccessible::queryAccessibleInterface(object);
  }
  [[nodiscard]] QColor pixel(const QPoint& at) const { return window->grab().toImage().pixelColor(at); }

  QPointer<StudioWindow> window;
  bool exportEnds = false;
  QString exportFailure;
};

TEST_F(StudioWindowTest, partsHaveTheirPlaces) {
  EXPECT_EQ(place(the<TopBar>()), QRect(0, 0, 1320, 52));
  EXPECT_EQ(place(the<Rule>()), QRect(0, 52, 1320, 1));
  const QList<ColumnArea*> columns = window->findChildren<ColumnArea*>();
  EXPECT_EQ(place(columns[0]), QRect(0, 53, 288, 807));
  EXPECT_EQ(place(columns[1]), QRect(1032, 53, 288, 807));
  EXPECT_EQ(place(the<Stage>()), QRect(288, 53, 744, 807));
  int left = button("New")->x();
  for (const QString title : {"New", "Play", "Export"}) {
    EXPECT_EQ(place(button(title)), QRect(left, 10, button(title)->width(), 32));
    left += button(title)->width() + 12;
  }
  EXPECT_EQ(window->minimumSize(), QSize(1180, 780));
  EXPECT_EQ(StudioWindow::openingSize({1920, 1080}), QSize(1320, 860));
  EXPECT_EQ(StudioWindow::openingSize({1280, 800}), QSize(1280, 800));
  EXPECT_EQ(StudioWindow::openingSize({1024, 600}), QSize(1180, 780));
}

TEST_F(StudioWindowTest, blocksFollowEachOtherWithTheirMargins) {
  settle();
  const auto blocks = window->findChildren<InspectorBlock*>();
  const int wallpapers = static_cast<int>(Studio::wallpapers().size());
  const int presets = static_cast<int>(AppPreset::all().size());
  // Five wallpapers and six apps a row, with the chips for those of one's own.
  const int apps = 53 + 61 + (wallpapers / 5 + 1) * 52 - 8;
  const int types = apps + 61 + (presets / 6 + 1) * 44 - 8, ping = types + 157;
  // Margins, label, spacing, content: 18 + 13 + 12 + content + 18.
  EXPECT_EQ(place(blocks[0]), QRect(0, 53, 288, apps - 53));
  EXPECT_EQ(place(blocks[1]), QRect(0, apps, 288, types - apps));
  EXPECT_EQ(place(blocks[2]), QRect(0, types, 288, 61 + 3 * 28 + 2 * 6));
  EXPECT_EQ(place(blocks[3]), QRect(0, ping, 288, 61 + 2 * 55 + 34 + 2 * 10));
  EXPECT_EQ(place(chip("One")), QRect(18, 96, 44, 44));
  EXPECT_EQ(place(chip("Upload lock screen photo")), QRect(18 + wallpapers % 5 * 52, apps - 18 - 44, 44, 44));
  EXPECT_EQ(place(chip("Comment")), QRect(18 + 123 + 6, types + 43, 123, 28));
  EXPECT_EQ(place(button("Add ping")), QRect(18, ping + 43 + 130, 252, 34));
}

TEST_F(StudioWindowTest, whatIsSelectedAndWhatIsOfNoUseIsSeen) {
  const auto leftEdge = [this](QWidget* widget, int x) {
    return pixel({place(widget).left() + x, place(widget).center().y()});
  };
  EXPECT_EQ(leftEdge(chip("One"), -1), Studio::paper);
  EXPECT_EQ(leftEdge(chip("One"), 1), Studio::ink);
  EXPECT_NE(leftEdge(chip("One"), 2), Studio::ink);
  EXPECT_EQ(leftEdge(chip("Two"), 0), Studio::line);
  EXPECT_NE(leftEdge(chip("Two"), 1), Studio::line);
  EXPECT_FALSE(button("Play")->isEnabled() || button("Export")->isEnabled());
  EXPECT_TRUE(button("New")->isEnabled());
  // Ink at 40 % on white, and the title as pale on it.
  EXPECT_NEAR(leftEdge(button("Export"), 4).red(), 255 - 0.4 * (255 - 17), 1);
  const auto brightest = [](QWidget* control) {
    const QImage inside = control->grab(control->rect().adjusted(8, 8, -8, -8)).toImage();
    int most = 0;
    for (int i = 0; i < inside.width() * inside.height(); ++i)
      most = std::max(most, qRed(inside.pixel(i % inside.width(), i / inside.width())));
    return most;
  };
  EXPECT_NEAR(brightest(button("Export")), 190, 12);
  EXPECT_GT(brightest(chip("Video like")), 200) << "The chosen type is white on ink.";
}

TEST_F(StudioWindowTest, chipsCommandAndFollow) {
  press(chip("Messages"));
  EXPECT_EQ(view().selectedAppId(), "messages");
  EXPECT_TRUE(chip("Messages")->isSelected());
  EXPECT_FALSE(chip("TikTok")->isSelected());
  settle();
  EXPECT_EQ(window->findChildren<TypeChip*>().size(), 3);
  EXPECT_TRUE(chip("Text")->isSelected());
  EXPECT_EQ(field("Sender")->text(), "Mom");
  for (int presses = 0; presses < 2; ++presses) {
    press(chip("Voice note"));
    EXPECT_EQ(field("Text")->text(), "Voice Message");
    EXPECT_TRUE(chip("Voice note")->isSelected()) << "A second press does not take it back.";
  }
  press(chip("Three"));
  EXPECT_EQ(view().document().wallpaper, "three");
  press(button("Add ping"));
  EXPECT_EQ(the<TimelineList>()->rowCount(), 1);

  StudioLineEdit *app = field("App name"), *delay = field("Lands at (seconds)");
  EXPECT_FALSE(app->isVisible());
  press(chip("Custom app"));
  EXPECT_TRUE(app->isVisible());
  app->selectAll();
  QTest::keyClicks(app, "zed");
  EXPECT_EQ(view().customAppLabel(), "zed");
  press(chip("TikTok"));
  EXPECT_FALSE(app->isVisible());
  for (const bool isSelected : {false, true, false}) {
    EXPECT_EQ(delay->isVisible(), isSelected);
    clickRow(0);
  }
}

TEST_F(StudioWindowTest, fieldsFollowTheTypistKeepTheirHistoryAndTidyUpAfterwards) {
  StudioLineEdit *sender = field("Sender"), *delay = field("Lands at (seconds)");
  sender->setFocus();
  sender->setCursorPosition(1);
  QTest::keyClicks(sender, "x");
  EXPECT_EQ(view().draftTitle(), "@xmaya");
  EXPECT_EQ(sender->cursorPosition(), 2);
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(view().draftTitle(), "@maya");
  QApplication::clipboard()->setText("a\r\nb\u2028c\td" + QString(90, u'w'));
  key(Qt::Key_A, Qt::ControlModifier);
  key(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(view().draftTitle(), "a  b c d" + QString(90, u'w')) << "as it is seen in one line";
  window->setFocus();
  EXPECT_EQ(sender->cursorPosition(), 0) << "A field that is left shows its beginning.";

  addPings(1);
  clickRow(0);
  EXPECT_EQ(delay->text(), "0.7");
  delay->setFocus();
  delay->selectAll();
  QTest::keyClicks(delay, "01,50x");
  EXPECT_EQ(delay->text(), "01,50x");
  EXPECT_EQ(view().document().notifications.first().delayMs, 1500);
  window->setFocus();
  EXPECT_EQ(delay->text(), "1.5");
}

TEST_F(StudioWindowTest, tabReachesEveryGroupOnceInReadingOrder) {
  addPings(1);
  window->setFocus();
  QStringList reached;
  for (int i = 0; i < 15; ++i) {
    key(Qt::Key_Tab);
    const QWidget* focused = QApplication::focusWidget();
    const auto* pressable = qobject_cast<const QAbstractButton*>(focused);
    reached.append(pressable && !pressable->text().isEmpty() ? pressable->text() : focused->accessibleName());
    EXPECT_TRUE(isMarked(focused)) << reached.last().toStdString();
  }
  EXPECT_EQ(reached.join(", "),
            "Title, New, Play, Export, Minimise, Zoom, Close, One, TikTok, Video like, "
            "Sender, Text, Add ping, Pings, Title");
}

TEST_F(StudioWindowTest, arrowsWalkAGridAndKeysPress) {
  chip("Video like")->setFocus(Qt::TabFocusReason);
  const struct {
    Qt::Key key;
    QString focused, chosenType;
  } steps[] = {
      {Qt::Key_Down, "Follow", "like"},      {Qt::Key_Right, "Mention", "like"},
      {Qt::Key_Space, "Mention", "mention"}, {Qt::Key_Up, "Comment", "mention"},
      {Qt::Key_Up, "Comment", "mention"},    {Qt::Key_Return, "Comment", "comment"},
  };
  for (const auto& step : steps) {
    key(step.key);
    EXPECT_TRUE(chip(step.focused)->hasFocus() && isMarked(chip(step.focused))) << step.focused.toStdString();
    EXPECT_EQ(view().selectedTypeId(), step.chosenType);
  }
  button("Add ping")->setFocus();
  key(Qt::Key_Return);
  EXPECT_EQ(view().document().notifications.size(), 1);
  named<QAbstractButton>("Minimise")->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  EXPECT_TRUE(window->isMinimized());
}

TEST_F(StudioWindowTest, pointerLeavesNoFocusMark) {
  for (QWidget* control :
       {static_cast<QWidget*>(chip("Instagram")), static_cast<QWidget*>(field("Sender"))}) {
    press(control);
    EXPECT_TRUE(control->hasFocus());
    EXPECT_FALSE(isMarked(control));
  }
  press(the<Stage>());
  EXPECT_FALSE(field("Sender")->hasFocus()) << "A click beside a field ends its editing.";
}

TEST_F(StudioWindowTest, keysWorkTheTimeline) {
  addPings(40);
  TimelineList* list = the<TimelineList>();
  const auto comesIntoView = [list](qsizetype row) {
    return QTest::qWaitFor([&] { return list->visibleRegion().contains(list->rowRect(row).center()); });
  };
  EXPECT_TRUE(comesIntoView(39));
  EXPECT_FALSE(list->visibleRegion().contains(list->rowRect(0).center()));
  const QRect secondRow = list->rowRect(1);
  const QString second = list->ping(1).id, third = list->ping(2).id;
  list->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Home);
  EXPECT_TRUE(comesIntoView(0));
  key(Qt::Key_Down);
  key(Qt::Key_Space);
  EXPECT_EQ(view().selectedPingId(), second);
  EXPECT_EQ(list->rowRect(1), secondRow) << "Nothing moves for a selection.";
  key(Qt::Key_Escape);
  EXPECT_FALSE(view().selectedPingId());
  key(Qt::Key_Delete);
  EXPECT_EQ(list->rowOf(second), -1);
  EXPECT_EQ(list->rowOf(third), 1);
  EXPECT_EQ(list->currentRow(), 1);
  QKeyEvent held(QEvent::KeyPress, Qt::Key_Delete, {}, {}, true);
  QApplication::sendEvent(list, &held);
  EXPECT_EQ(list->rowCount(), 39) << "A key that is held removes one.";
  for (int i = 0; i < 40; ++i) key(Qt::Key_Delete);
  EXPECT_EQ(list->rowCount(), 0);
  EXPECT_TRUE(button("Add ping")->hasFocus() && isMarked(button("Add ping")));
  EXPECT_EQ(view().document().title, "Untitled");
}

TEST_F(StudioWindowTest, removeButtonIsNoTapOnItsRow) {
  addPings(2);
  TimelineList* list = the<TimelineList>();
  QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {},
                     list->mapTo(window, list->removeRect(0).center()));
  EXPECT_EQ(list->rowCount(), 1) << "A double click removes one.";
  // Let go beside the button, nothing is removed.
  QTest::mousePress(list, Qt::LeftButton, {}, list->removeRect(0).center());
  QTest::mouseRelease(list, Qt::LeftButton, {}, list->rowRect(0).center());
  EXPECT_EQ(list->rowCount(), 1);
  EXPECT_FALSE(view().selectedPingId());
}

TEST(TimelineListTest, rowsOfThousandsKeepTheirOrderAndHeights) {
  QList<Ping> pings(2000);
  for (qsizetype i = 0; i < 2000; ++i) pings[i].id = QString::number(i);
  TimelineList list;
  list.resize(252, 100);
  list.show();
  const auto expectGapless = [&](const std::optional<QString>& selected) {
    list.setPings(pings, selected);
    ASSERT_EQ(list.rowCount(), pings.size());
    int top = 0;
    for (qsizetype i = 0; i < pings.size(); ++i) {
      ASSERT_EQ(list.ping(i).id, pings[i].id);
      ASSERT_EQ(list.rowRect(i).top(), top);
      top += list.rowRect(i).height() + TimelineList::rowSpacing;
    }
    EXPECT_EQ(list.height(), top - TimelineList::rowSpacing);
  };
  expectGapless({});
  const int height = list.rowRect(0).height();
  pings[500].message = "a message that is long enough for a second line";
  expectGapless(pings[500].id);
  EXPECT_EQ(list.rowRect(500).height(), height + 15);
  const QImage row = list.grab(list.rowRect(500)).toImage();
  pings[500].delayMs = 1500;
  expectGapless(pings[500].id);
  EXPECT_NE(list.grab(list.rowRect(500)).toImage(), row) << "It shows its new time.";
  pings.removeAt(0);
  pings.swapItemsAt(3, 900);
  pings.append(pings[3]);
  pings.last().id = "new";
  expectGapless({});
  EXPECT_EQ(list.height(), 2000 * (height + TimelineList::rowSpacing) - TimelineList::rowSpacing + 15);
}

TEST_F(StudioWindowTest, everyControlHasARoleANameAndAState) {
  addPings(1);
  clickRow(0);
  const auto expect = [](QObject* control, QAccessible::Role role, const QString& name) {
    EXPECT_EQ(accessible(control)->role(), role) << name.toStdString();
    EXPECT_EQ(accessible(control)->text(QAccessible::Name), name);
  };
  for (const QString name : {"One", "Comment", "Custom app"})
    expect(chip(name), QAccessible::RadioButton, name);
  expect(button("Export"), QAccessible::Button, "Export");
  expect(field("Sender"), QAccessible::EditableText, "Sender");
  expect(the<StudioLabel>(), QAccessible::StaticText, "Lock screen");
  expect(window, QAccessible::Window, window->windowTitle());
  expect(chip("One")->parentWidget(), QAccessible::Grouping, "Lock screen");
  expect(the<Stage>(), QAccessible::Graphic, "Lock screen");
  EXPECT_EQ(accessible(the<Stage>())->text(QAccessible::Description), "TikTok: @maya, liked your video.");
  accessible(field("Sender"))->setText(QAccessible::Value, "dictated");
  EXPECT_EQ(view().senderText(), "dictated");
  EXPECT_TRUE(accessible(chip("One"))->state().checked);
  EXPECT_FALSE(accessible(chip("Two"))->state().checked);
  EXPECT_EQ(chip("Upload lock screen photo")->toolTip(), "Upload photo");
  for (QAbstractButton* each : window->findChildren<QAbstractButton*>())
    EXPECT_TRUE(!each->isVisible() || !accessible(each)->text(QAccessible::Name).isEmpty());

  QAccessibleInterface* list = accessible(the<TimelineList>());
  ASSERT_EQ(list->childCount(), 1);
  QAccessibleInterface* row = list->child(0);
  EXPECT_EQ(row->role(), QAccessible::ListItem);
  EXPECT_EQ(row->text(QAccessible::Name), "Ping 1, dictated");
  EXPECT_TRUE(row->state().selected);
  EXPECT_EQ(list->indexOfChild(row), 0);
  row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(row->state().selected);
  row->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(list->childCount(), 0);
  EXPECT_FALSE(row->isValid());
}

TEST_F(StudioWindowTest, exportIsSeenOnTheRuleAndItsFailureInAnAlert) {
  addPings(1);
  button("Export")->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  StudioButton* exporting = button("Exporting");
  ASSERT_TRUE(exporting);
  EXPECT_FALSE(exporting->isEnabled());
  EXPECT_TRUE(named<QLabel>("42%"));
  EXPECT_EQ(accessible(the<Rule>())->role(), QAccessible::ProgressBar);
  EXPECT_EQ(accessible(the<Rule>())->valueInterface()->currentValue(), 42);
  const int done = 1320 * 42 / 100;
  EXPECT_EQ(pixel({done - 2, 52}), Studio::ink);
  EXPECT_EQ(pixel({done + 2, 52}), Studio::line);

  exportFailure = "Could not write the video file.";
  exportEnds = true;
  Alert* alert = the<Alert>();
  ASSERT_TRUE(QTest::qWaitFor([alert] { return alert->isOpen(); }));
  EXPECT_EQ(accessible(alert)->role(), QAccessible::AlertMessage);
  EXPECT_EQ(accessible(alert)->text(QAccessible::Name), "Something went wrong");
  EXPECT_EQ(accessible(alert)->text(QAccessible::Description), exportFailure);
  // The window behind takes no input meanwhile.
  key(Qt::Key_Tab);
  window->resize(1320, 861);  // which raises the window's edges
  QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, {1, 400});
  EXPECT_EQ(QApplication::focusWidget(), button("OK"));
  EXPECT_EQ(window->childAt(place(button("Add ping")).center()), alert);
  key(Qt::Key_Return);
  EXPECT_FALSE(alert->isOpen());
  EXPECT_TRUE(view().error().isEmpty());
  EXPECT_TRUE(button("Export")->hasFocus() && isMarked(button("Export"))) << "Where the keyboard was.";
  EXPECT_FALSE(named<QLabel>("42%"));
  EXPECT_EQ(pixel({10, 52}), Studio::line);
}

TEST_F(StudioWindowTest, closingDuringAnExportAsksFirst) {
  Alert* alert = the<Alert>();
  addPings(1);
  press(button("Export"));
  field("Sender")->setFocus();
  field("Sender")->setCursorPosition(3);
  EXPECT_FALSE(window->close());
  key(Qt::Key_Tab);
  EXPECT_TRUE(isMarked(button("Stop")));
  key(Qt::Key_Escape);
  EXPECT_FALSE(alert->isOpen());
  EXPECT_TRUE(view().exporting());
  EXPECT_EQ(field("Sender")->cursorPosition(), 3) << "Who was typing goes on.";
  EXPECT_TRUE(field("Sender")->hasFocus());

  // An export that fails while the question is asked answers it.
  EXPECT_FALSE(window->close());
  exportEnds = true;
  exportFailure = "The disk is full.";
  ASSERT_TRUE(QTest::qWaitFor([this] { return !view().exporting(); }));
  settle();
  EXPECT_EQ(alert->accessibleDescription(), exportFailure) << "Bad news is told before the end.";
  key(Qt::Key_Return);

  exportEnds = false;
  press(button("Export"));
  EXPECT_FALSE(window->close());
  EXPECT_EQ(alert->accessibleName(), "Stop the export?");
  key(Qt::Key_Tab);
  key(Qt::Key_Space);
  EXPECT_TRUE(QTest::qWaitFor([this] { return window.isNull(); }));
}

TEST_F(StudioWindowTest, playButtonTakesItsFocusBack) {
  addPings(1);
  StudioButton* play = button("Play");
  play->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  EXPECT_EQ(play->text(), "Playing");
  EXPECT_FALSE(button("Export")->hasFocus()) << "The next key must not export.";
  view().player()->stop();
  settle();
  EXPECT_TRUE(play->hasFocus());
}

TEST_F(StudioWindowTest, newSequenceIsShownWithItsPlayer) {
  addPings(2);
  const QImage before = restingStage();
  press(button("New"));
  EXPECT_EQ(the<TimelineList>()->rowCount(), 0);
  EXPECT_FALSE(the<TimelineList>()->isVisible());
  EXPECT_NE(restingStage(), before);
  addPings(2);
  EXPECT_EQ(restingStage(), before) << "The stage follows the new player.";
}

TEST(BriskletAppTest, windowsAreIndependentAndCloseOneByOne) {
  BriskletApp app({}, [](QWidget* over) { return std::make_unique<FixedPanels>(over); });
  QPointer<StudioWindow> first = app.openWindow(), second;
  const auto press = [](QPointer<StudioWindow>& window, Qt::Key key) {
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    QTest::keyClick(window, key, Qt::ControlModifier);
  };
  first->view().addPing();
  press(first, Qt::Key_N);
  for (QWidget* each : QApplication::topLevelWidgets())
    if (auto* other = qobject_cast<StudioWindow*>(each); other && other != first) second = other;
  ASSERT_TRUE(second);
  EXPECT_TRUE(second->view().document().notifications.isEmpty());
  press(second, Qt::Key_W);
  EXPECT_TRUE(QTest::qWaitFor([&] { return second.isNull(); }));
  EXPECT_TRUE(first->isVisible());
  press(first, Qt::Key_Q);
  EXPECT_TRUE(QTest::qWaitFor([&] { return first.isNull(); }));
}

}  // namespace
}  // namespace brisklet
