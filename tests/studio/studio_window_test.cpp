#include "studio/studio_window.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QCoroTimer>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <chrono>

#include "base/error.h"
#include "model/catalogue.h"
#include "studio/add_ping_button.h"
#include "studio/alert.h"
#include "studio/app_chip.h"
#include "studio/brisklet_app.h"
#include "studio/chip_grid.h"
#include "studio/column_area.h"
#include "studio/custom_app_chip.h"
#include "studio/custom_wallpaper_chip.h"
#include "studio/focus_mark.h"
#include "studio/inspector_block.h"
#include "studio/palette.h"
#include "studio/rule.h"
#include "studio/stage.h"
#include "studio/studio_button.h"
#include "studio/studio_field.h"
#include "studio/studio_label.h"
#include "studio/timeline.h"
#include "studio/timeline_list.h"
#include "studio/top_bar.h"
#include "studio/type_chip.h"
#include "studio/wallpaper_chip.h"
#include "support/printing.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace brisklet {
namespace {

struct FixedPanels : FilePanels {
  void save(const SavePanel&, Done done) override { done(u"/tmp/movie.mp4"_s); }
  void open(const OpenPanel&, Done done) override { done({}); }
};

struct StudioWindowTest : testing::Test {
  StudioWindowTest() {
    StudioView::Services services;
    services.exportMovie = [this](SequenceDocument, QString, StudioView::Progress progress,
                                  std::stop_token stop) { return runExport(progress, stop); };
    window = new StudioWindow(services, [](QWidget*) { return std::make_unique<FixedPanels>(); });
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
    if (stop.stop_requested()) throw Error(u"Stopped."_s);
    if (!exportFailure.isEmpty()) throw Error(exportFailure);
  }

  [[nodiscard]] StudioView& view() const { return window->view(); }
  template <class Widget>
  [[nodiscard]] Widget* the() const {
    return window->findChild<Widget*>();
  }
  [[nodiscard]] StudioButton* button(const QString& title) const {
    for (StudioButton* each : window->findChildren<StudioButton*>())
      if (each->text() == title) return each;
    return nullptr;
  }
  [[nodiscard]] StudioField* field(const QString& title) const {
    for (StudioField* each : window->findChildren<StudioField*>())
      if (each->edit()->accessibleName() == title) return each;
    return nullptr;
  }
  [[nodiscard]] Chip* chip(const QString& name) const {
    for (Chip* each : window->findChildren<Chip*>())
      if (each->text() == name || each->accessibleName() == name) return each;
    return nullptr;
  }
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
  EXPECT_EQ(window->minimumSize(), QSize(1180, 780));
  EXPECT_EQ(StudioWindow::openingSize({1920, 1080}), QSize(1320, 860));
  EXPECT_EQ(StudioWindow::openingSize({1280, 800}), QSize(1280, 800));
  EXPECT_EQ(StudioWindow::openingSize({1024, 600}), QSize(1180, 780));
}

TEST_F(StudioWindowTest, blocksFollowEachOtherWithTheirMargins) {
  settle();
  const auto blocks = window->findChildren<InspectorBlock*>();
  // Six apps a row, five wallpapers, with the chips for those of one's own.
  const auto rows = [](qsizetype chips, qsizetype columns) {
    return static_cast<int>((chips - 1) / columns) + 1;
  };
  const int wallpaperRows = rows(Studio::wallpapers().size() + 1, 5);
  const int appRows = rows(AppPreset::all().size() + 1, 6);
  const int apps = 53 + 61 + wallpaperRows * 52 - 8, types = apps + 61 + appRows * 44 - 8, ping = types + 157;
  // Margins, label, spacing, content: 18 + 13 + 12 + content + 18.
  EXPECT_EQ(place(blocks[0]), QRect(0, 53, 288, apps - 53));
  EXPECT_EQ(place(blocks[1]), QRect(0, apps, 288, types - apps));
  EXPECT_EQ(place(blocks[2]), QRect(0, types, 288, 61 + 3 * 28 + 2 * 6));
  EXPECT_EQ(place(blocks[3]), QRect(0, ping, 288, 61 + 2 * 55 + 34 + 2 * 10));
  EXPECT_EQ(place(chip(u"One"_s)), QRect(18, 96, 44, 44));
  EXPECT_EQ(place(chip(u"Upload lock screen photo"_s)),
            QRect(18 + static_cast<int>(Studio::wallpapers().size()) % 5 * 52, apps - 18 - 44, 44, 44));
  EXPECT_EQ(place(chip(u"Comment"_s)), QRect(18 + 123 + 6, types + 43, 123, 28));
  EXPECT_EQ(place(the<AddPingButton>()), QRect(18, ping + 43 + 130, 252, 34));
}

TEST_F(StudioWindowTest, topBarItemsStandInOrder) {
  const QList<QWidget*> items{button(u"New"_s), button(u"Play"_s), button(u"Export"_s)};
  for (QWidget* item : items) {
    EXPECT_EQ(item->height(), 32);
    EXPECT_EQ(item->y(), 10);
  }
  EXPECT_EQ(items[1]->x() - items[0]->geometry().right() - 1, 12);
  EXPECT_EQ(items[2]->x() - items[1]->geometry().right() - 1, 12);
}

TEST_F(StudioWindowTest, outlinesAreCrispAndSayWhatIsSelected) {
  const QRect selected = place(chip(u"One"_s)), other = place(chip(u"Two"_s));
  const QImage picture = window->grab().toImage();
  const auto acrossLeftEdge = [&picture](const QRect& chip, int x) {
    return picture.pixelColor(chip.left() + x, chip.center().y());
  };
  EXPECT_EQ(acrossLeftEdge(selected, -1), Studio::paper);
  EXPECT_EQ(acrossLeftEdge(selected, 0), Studio::ink);
  EXPECT_EQ(acrossLeftEdge(selected, 1), Studio::ink);
  EXPECT_NE(acrossLeftEdge(selected, 2), Studio::ink);
  EXPECT_EQ(acrossLeftEdge(other, -1), Studio::paper);
  EXPECT_EQ(acrossLeftEdge(other, 0), Studio::line);
  EXPECT_NE(acrossLeftEdge(other, 1), Studio::line);
}

TEST_F(StudioWindowTest, blankDocumentLeavesNothingToPlayOrExport) {
  EXPECT_FALSE(button(u"Play"_s)->isEnabled());
  EXPECT_FALSE(button(u"Export"_s)->isEnabled());
  EXPECT_TRUE(button(u"New"_s)->isEnabled());
  // Ink at 40 % on white.
  const QRect solid = place(button(u"Export"_s));
  EXPECT_NEAR(pixel(solid.topLeft() + QPoint(4, 16)).red(), 255 - 0.4 * (255 - 17), 1);
  QTest::mouseClick(button(u"Export"_s), Qt::LeftButton);
  EXPECT_FALSE(view().exporting());
}

TEST_F(StudioWindowTest, chipsCommandAndFollow) {
  press(chip(u"Messages"_s));
  EXPECT_EQ(view().selectedAppId(), u"messages"_s);
  EXPECT_TRUE(chip(u"Messages"_s)->isSelected());
  EXPECT_FALSE(chip(u"TikTok"_s)->isSelected());
  EXPECT_EQ(window->findChildren<TypeChip*>().size(), 3);
  EXPECT_TRUE(chip(u"Text"_s)->isSelected());
  EXPECT_EQ(field(u"Sender"_s)->edit()->text(), u"Mom"_s);

  press(chip(u"Voice note"_s));
  EXPECT_EQ(field(u"Text"_s)->edit()->text(), u"Voice Message"_s);
  press(chip(u"Voice note"_s));
  EXPECT_TRUE(chip(u"Voice note"_s)->isSelected()) << "A second press does not take it back.";
  press(chip(u"Three"_s));
  EXPECT_EQ(view().document().wallpaper, u"three"_s);
  press(the<AddPingButton>());
  ASSERT_EQ(the<TimelineList>()->rowCount(), 1);
}

TEST_F(StudioWindowTest, fieldsAreThereWhenTheyAreOfUse) {
  EXPECT_FALSE(field(u"App name"_s)->isVisible());
  press(chip(u"Custom app"_s));
  EXPECT_TRUE(field(u"App name"_s)->isVisible());
  field(u"App name"_s)->edit()->selectAll();
  QTest::keyClicks(field(u"App name"_s)->edit(), u"zed"_s);
  EXPECT_EQ(view().customAppLabel(), u"zed"_s);
  press(chip(u"TikTok"_s));
  EXPECT_FALSE(field(u"App name"_s)->isVisible());

  addPings(1);
  StudioField* delay = field(u"Lands at (seconds)"_s);
  EXPECT_FALSE(delay->isVisible());
  TimelineList* list = the<TimelineList>();
  QTest::mouseClick(list, Qt::LeftButton, {}, list->rowRect(0).center());
  EXPECT_TRUE(delay->isVisible());
  QTest::mouseClick(list, Qt::LeftButton, {}, list->rowRect(0).center());
  EXPECT_FALSE(delay->isVisible());
}

TEST_F(StudioWindowTest, delayFieldFollowsTheTypistAndTidiesUpAfterwards) {
  addPings(1);
  view().selectPing(view().document().notifications.first());
  QLineEdit* edit = field(u"Lands at (seconds)"_s)->edit();
  EXPECT_EQ(edit->text(), u"0.7"_s);
  edit->setFocus();
  edit->selectAll();
  QTest::keyClicks(edit, u"01,50"_s);
  EXPECT_EQ(edit->text(), u"01,50"_s);
  EXPECT_EQ(view().document().notifications.first().delayMs, 1500);
  QTest::keyClicks(edit, u"x"_s);
  EXPECT_EQ(view().document().notifications.first().delayMs, 1500);
  EXPECT_EQ(edit->text(), u"01,50x"_s);
  window->setFocus();
  EXPECT_EQ(edit->text(), u"1.5"_s);
}

TEST_F(StudioWindowTest, editsOfTextKeepTheirHistory) {
  StudioLineEdit* sender = field(u"Sender"_s)->edit();
  sender->setFocus();
  sender->setCursorPosition(1);
  QTest::keyClicks(sender, u"x"_s);
  EXPECT_EQ(view().draftTitle(), u"@xmaya"_s);
  EXPECT_EQ(sender->cursorPosition(), 2);
  key(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(view().draftTitle(), u"@maya"_s);
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
  EXPECT_EQ(reached.join(u", "),
            u"Title, New, Play, Export, Minimise, Zoom, Close, One, TikTok, Video like, "
            "Sender, Text, Add ping, Pings, Title"_s);
}

TEST_F(StudioWindowTest, arrowsWalkAGridAndKeysPress) {
  chip(u"Video like"_s)->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Down);
  EXPECT_TRUE(chip(u"Follow"_s)->hasFocus());
  EXPECT_TRUE(isMarked(chip(u"Follow"_s)));
  key(Qt::Key_Right);
  EXPECT_TRUE(chip(u"Mention"_s)->hasFocus());
  EXPECT_EQ(view().selectedTypeId(), u"like"_s) << "Walking is not choosing.";
  key(Qt::Key_Space);
  EXPECT_EQ(view().selectedTypeId(), u"mention"_s);
  key(Qt::Key_Up);
  key(Qt::Key_Up);
  EXPECT_TRUE(chip(u"Comment"_s)->hasFocus());
  key(Qt::Key_Return);
  EXPECT_EQ(view().selectedTypeId(), u"comment"_s);
  the<AddPingButton>()->setFocus();
  key(Qt::Key_Return);
  EXPECT_EQ(view().document().notifications.size(), 1);
}

TEST_F(StudioWindowTest, pointerLeavesNoFocusMark) {
  press(chip(u"Instagram"_s));
  EXPECT_TRUE(chip(u"Instagram"_s)->hasFocus());
  EXPECT_FALSE(isMarked(chip(u"Instagram"_s)));
  press(field(u"Sender"_s)->edit());
  EXPECT_FALSE(isMarked(field(u"Sender"_s)->edit()));
  press(the<Stage>());
  EXPECT_FALSE(field(u"Sender"_s)->edit()->hasFocus()) << "A click beside a field ends its editing.";
}

TEST_F(StudioWindowTest, keysWorkTheTimeline) {
  addPings(3);
  TimelineList* list = the<TimelineList>();
  const QRect secondRow = list->rowRect(1);
  const QString second = list->ping(1).id, third = list->ping(2).id;
  list->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Down);
  key(Qt::Key_Space);
  EXPECT_EQ(view().selectedPingId(), second);
  EXPECT_EQ(list->rowRect(1), secondRow) << "Nothing moves for a selection.";
  key(Qt::Key_Escape);
  EXPECT_FALSE(view().selectedPingId());
  key(Qt::Key_Delete);
  ASSERT_EQ(list->rowCount(), 2);
  EXPECT_EQ(list->rowOf(second), -1);
  EXPECT_EQ(list->currentRow(), list->rowOf(third));
}

TEST_F(StudioWindowTest, removeButtonIsNoTapOnItsRow) {
  addPings(2);
  TimelineList* list = the<TimelineList>();
  QTest::mouseClick(list, Qt::LeftButton, {}, list->removeRect(0).center());
  EXPECT_EQ(list->rowCount(), 1);
  EXPECT_FALSE(view().selectedPingId());

  // Let go beside the button, nothing is removed.
  QTest::mousePress(list, Qt::LeftButton, {}, list->removeRect(0).center());
  QTest::mouseRelease(list, Qt::LeftButton, {}, list->rowRect(0).center());
  EXPECT_EQ(list->rowCount(), 1);
  EXPECT_FALSE(view().selectedPingId());
}

TEST_F(StudioWindowTest, newRowsComeIntoView) {
  addPings(40);
  TimelineList* list = the<TimelineList>();
  const auto isInView = [list](qsizetype row) {
    return list->visibleRegion().contains(list->rowRect(row).center());
  };
  EXPECT_TRUE(QTest::qWaitFor([&] { return isInView(39); }));
  EXPECT_FALSE(isInView(0));
  list->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Home);
  EXPECT_TRUE(QTest::qWaitFor([&] { return isInView(0); }));
}

TEST(TimelineListTest, rowsOfThousandsKeepTheirOrderAndHeights) {
  const auto pingOf = [](const QString& id) {
    Ping ping;
    ping.id = id;
    ping.title = u"@maya"_s;
    ping.message = u"ok"_s;
    return ping;
  };
  QList<Ping> pings;
  for (int i = 0; i < 2000; ++i) pings.append(pingOf(QString::number(i)));
  TimelineList list;
  list.resize(252, 100);
  list.show();
  list.setPings(pings, {});
  const int height = list.rowRect(0).height();
  const auto expectGapless = [&] {
    ASSERT_EQ(list.rowCount(), pings.size());
    int top = 0;
    for (qsizetype i = 0; i < pings.size(); ++i) {
      ASSERT_EQ(list.ping(i).id, pings[i].id);
      ASSERT_EQ(list.rowRect(i).top(), top);
      top += list.rowRect(i).height() + TimelineList::rowSpacing;
    }
    EXPECT_EQ(list.height(), top - TimelineList::rowSpacing);
  };
  expectGapless();
  pings[500].message = u"a message that is long enough for a second line"_s;
  list.setPings(pings, pings[500].id);
  expectGapless();
  EXPECT_EQ(list.rowRect(500).height(), height + 15);
  pings.removeAt(0);
  pings.swapItemsAt(3, 900);
  pings.append(pingOf(u"new"_s));
  list.setPings(pings, {});
  expectGapless();
}

TEST_F(StudioWindowTest, everyControlHasARoleANameAndAState) {
  addPings(1);
  view().selectPing(view().document().notifications.first());
  settle();
  const auto check = [](QObject* control, QAccessible::Role role, const QString& name) {
    EXPECT_EQ(accessible(control)->role(), role) << name.toStdString();
    EXPECT_EQ(accessible(control)->text(QAccessible::Name), name);
  };
  check(chip(u"One"_s), QAccessible::RadioButton, u"One"_s);
  check(chip(u"Comment"_s), QAccessible::RadioButton, u"Comment"_s);
  check(chip(u"Custom app"_s), QAccessible::RadioButton, u"Custom app"_s);
  check(button(u"Export"_s), QAccessible::Button, u"Export"_s);
  check(field(u"Sender"_s)->edit(), QAccessible::EditableText, u"Sender"_s);
  check(the<StudioLabel>(), QAccessible::StaticText, u"Lock screen"_s);
  EXPECT_TRUE(accessible(chip(u"One"_s))->state().checked);
  EXPECT_FALSE(accessible(chip(u"Two"_s))->state().checked);
  EXPECT_EQ(chip(u"Upload lock screen photo"_s)->toolTip(), u"Upload photo"_s);
  for (QAbstractButton* each : window->findChildren<QAbstractButton*>())
    EXPECT_TRUE(!each->isVisible() || !accessible(each)->text(QAccessible::Name).isEmpty());

  QAccessibleInterface* list = accessible(the<TimelineList>());
  ASSERT_EQ(list->childCount(), 1);
  QAccessibleInterface* row = list->child(0);
  EXPECT_EQ(row->role(), QAccessible::ListItem);
  EXPECT_EQ(row->text(QAccessible::Name), u"Ping 1, @maya"_s);
  EXPECT_TRUE(row->state().selected);
  EXPECT_EQ(list->indexOfChild(row), 0);
  row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_FALSE(row->state().selected);
  row->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(list->childCount(), 0);
  EXPECT_FALSE(row->isValid());
}

TEST_F(StudioWindowTest, exportIsSeenOnTheRuleAndToldByItsButton) {
  addPings(1);
  press(button(u"Export"_s));
  StudioButton* exporting = button(u"Exporting"_s);
  ASSERT_TRUE(exporting);
  EXPECT_FALSE(exporting->isEnabled());
  EXPECT_TRUE(exporting->toolTip().contains(u"42%"));
  EXPECT_TRUE(accessible(exporting)->text(QAccessible::Description).contains(u"42%"));
  const int done = 1320 * 42 / 100;
  EXPECT_EQ(pixel({done - 2, 52}), Studio::ink);
  EXPECT_EQ(pixel({done + 2, 52}), Studio::line);
  EXPECT_EQ(place(the<Stage>()), QRect(288, 53, 744, 807));

  exportEnds = true;
  EXPECT_TRUE(QTest::qWaitFor([this] { return button(u"Export"_s) != nullptr; }));
  EXPECT_TRUE(button(u"Export"_s)->toolTip().isEmpty());
  EXPECT_EQ(pixel({10, 52}), Studio::line);
}

TEST_F(StudioWindowTest, alertTellsOfAFailureAndIsAnswered) {
  addPings(1);
  exportFailure = u"Could not write the video file."_s;
  exportEnds = true;
  press(button(u"Export"_s));
  Alert* alert = the<Alert>();
  ASSERT_TRUE(QTest::qWaitFor([alert] { return alert->isOpen(); }));
  EXPECT_EQ(accessible(alert)->role(), QAccessible::AlertMessage);
  EXPECT_EQ(accessible(alert)->text(QAccessible::Name), u"Something went wrong"_s);
  EXPECT_EQ(accessible(alert)->text(QAccessible::Description), exportFailure);

  // The window behind takes no input meanwhile.
  key(Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), button(u"OK"_s));
  EXPECT_EQ(window->childAt(place(the<AddPingButton>()).center()), alert);
  key(Qt::Key_Return);
  EXPECT_FALSE(alert->isOpen());
  EXPECT_TRUE(view().error().isEmpty());
}

TEST_F(StudioWindowTest, closingDuringAnExportAsksFirst) {
  addPings(1);
  press(button(u"Export"_s));
  EXPECT_FALSE(window->close());
  Alert* alert = the<Alert>();
  EXPECT_TRUE(alert->isOpen());
  EXPECT_EQ(alert->accessibleName(), u"Stop the export?"_s);
  key(Qt::Key_Escape);
  EXPECT_FALSE(alert->isOpen());
  EXPECT_TRUE(view().exporting());

  EXPECT_FALSE(window->close());
  press(button(u"Stop"_s));
  EXPECT_TRUE(QTest::qWaitFor([this] { return window.isNull(); }));
}

TEST_F(StudioWindowTest, questionGoesAwayWithTheExport) {
  addPings(1);
  press(button(u"Export"_s));
  EXPECT_FALSE(window->close());
  exportEnds = true;
  exportFailure = u"The disk is full."_s;
  ASSERT_TRUE(QTest::qWaitFor([this] { return !view().exporting(); }));
  settle();
  EXPECT_EQ(the<Alert>()->accessibleDescription(), exportFailure) << "Bad news is told before the end.";
}

TEST_F(StudioWindowTest, playButtonTakesItsFocusBack) {
  addPings(1);
  StudioButton* play = button(u"Play"_s);
  play->setFocus(Qt::TabFocusReason);
  key(Qt::Key_Space);
  EXPECT_EQ(play->text(), u"Playing"_s);
  EXPECT_FALSE(button(u"Export"_s)->hasFocus()) << "The next key must not export.";
  view().player()->stop();
  settle();
  EXPECT_TRUE(play->hasFocus());
}

TEST_F(StudioWindowTest, newSequenceIsShownWithItsPlayer) {
  addPings(2);
  const QImage before = restingStage();
  press(button(u"New"_s));
  EXPECT_EQ(the<TimelineList>()->rowCount(), 0);
  EXPECT_FALSE(the<TimelineList>()->isVisible());
  EXPECT_NE(restingStage(), before);
  addPings(2);
  EXPECT_EQ(restingStage(), before) << "The stage follows the new player.";
}

TEST(BriskletAppTest, windowsAreIndependentAndCloseOneByOne) {
  BriskletApp app({}, [](QWidget*) { return std::make_unique<FixedPanels>(); });
  QPointer<StudioWindow> first = app.openWindow();
  first->view().addPing();
  ASSERT_TRUE(QTest::qWaitForWindowActive(first));
  QTest::keyClick(first, Qt::Key_N, Qt::ControlModifier);
  QPointer<StudioWindow> second;
  for (QWidget* each : QApplication::topLevelWidgets())
    if (auto* other = qobject_cast<StudioWindow*>(each); other && other != first) second = other;
  ASSERT_TRUE(second);
  EXPECT_TRUE(second->view().document().notifications.isEmpty());
  ASSERT_TRUE(QTest::qWaitForWindowActive(second));
  QTest::keyClick(second, Qt::Key_W, Qt::ControlModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return second.isNull(); }));
  EXPECT_TRUE(first->isVisible());
  first->activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(first));
  QTest::keyClick(first, Qt::Key_Q, Qt::ControlModifier);
  EXPECT_TRUE(QTest::qWaitFor([&] { return first.isNull(); }));
}

}  // namespace
}  // namespace brisklet
