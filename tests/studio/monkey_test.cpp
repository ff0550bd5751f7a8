#include "base/error.h"
#include "desktop/file_panels.h"
#include "studio/alert.h"
#include "studio/brisklet_app.h"
#include "studio/controls/chip.h"
#include "studio/controls/focus_mark.h"
#include "studio/controls/studio_button.h"
#include "studio/controls/studio_line_edit.h"
#include "studio/timeline_list.h"
#include "studio/top_bar.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QCoroFuture>
#include <QDeadlineTimer>
#include <QDialog>
#include <QMimeData>
#include <QPromise>
#include <QTest>
#include <QThreadPool>
#include <QWheelEvent>
#include <atomic>
#include <functional>
#include <iostream>
#include <memory>
#include <random>

namespace brisklet {
namespace {

/// A dialog of its own that waits for an answer, as the desktop's panels do.
struct DialogPanels : FilePanels {
  explicit DialogPanels(QWidget* over) : window(over) {}
  void save(const SavePanel&, SaveDone done) override {
    ask([done = std::move(done)](const std::optional<QString>& path) {
      done(path ? std::optional(ChosenFile{*path}) : std::nullopt);
    });
  }
  void open(const OpenPanel&, Done done) override { ask(std::move(done)); }
  void ask(Done done) const {
    auto* dialog = new QDialog(window);
    QObject::connect(dialog, &QDialog::finished, [dialog, done = std::move(done)](int answer) {
      dialog->deleteLater();
      done(answer == QDialog::Accepted ? std::optional<QString>("/a/file") : std::nullopt);
    });
    dialog->open();
  }
  QWidget* window;
};

/// Works the studio's windows as somebody does who presses anything at any time, and looks after every event
/// whether they can still be worked, show what is so, and have lost nothing.
class Monkey {
 public:
  explicit Monkey(unsigned seed) : random_(seed) {}

  void workFor(qint64 ms) {
    const QDeadlineTimer end(ms);
    while (!end.hasExpired() && !testing::Test::HasFailure()) step();
    for (const auto& each : exports_) each->promise.finish();
    qDeleteAll(windows());
    QTest::qWait(1);
    std::cout << steps_ << " events" << std::endl;
  }

 private:
  struct Export {
    StudioView::Progress progress;
    std::stop_token stop;
    QPromise<void> promise;
    bool fails = false;
  };
  struct Former {
    SequenceDocument document;
    std::optional<QString> selectedId;
    /// What the keys act on.
    QString currentId;
  };

  int below(int end) { return static_cast<int>(random_() % static_cast<unsigned>(end)); }
  bool oneIn(int times) { return below(times) == 0; }
  template <class List>
  auto anyOf(const List& list) {
    return list[below(static_cast<int>(list.size()))];
  }

  StudioView::Services services() {
    StudioView::Services services;
    services.exportMovie = [this](SequenceDocument, MovieStyle, QString, StudioView::Progress progress,
                                  std::stop_token stop) { return runExport(progress, stop); };
    // These two on another thread.
    services.decodeImage = [this](const QString&) {
      return ++photos_ % 3 == 0 ? std::nullopt : std::optional(QImage(2, 2, QImage::Format_RGB32));
    };
    services.imageSuffixes = QStringList{"png"};
    services.saveWallpaper = [this](const QImage&) -> QString {
      if (++photos_ % 3 == 0) throw Error("The disk is full.");
      return QString("/a/photo%1.jpg").arg(photos_ % 5);
    };
    services.clock = [this] { return nowMs_; };
    return services;
  }
  QCoro::Task<> runExport(StudioView::Progress progress, std::stop_token stop) {
    const auto run = std::make_shared<Export>(Export{progress, stop, {}, false});
    run->promise.start();
    exports_.append(run);
    co_await run->promise.future();
    if (stop.stop_requested()) throw Error("Stopped.");
    if (run->fails) throw Error("The disk is full.");
  }

  static QList<StudioWindow*> windows() {
    QList<StudioWindow*> found;
    for (QWidget* each : QApplication::topLevelWidgets())
      if (auto* window = qobject_cast<StudioWindow*>(each)) found.append(window);
    std::sort(found.begin(), found.end(), [](auto* a, auto* b) { return a->objectName() < b->objectName(); });
    return found;
  }
  template <class Widget>
  static Widget* named(const QWidget* window, const QStringList& names) {
    for (Widget* each : window->findChildren<Widget*>())
      if (names.contains(each->text()) || names.contains(each->accessibleName())) return each;
    return nullptr;
  }
  /// What a control is called; a chip as its group.
  static QString nameOf(const QWidget* widget) {
    if (!widget) return {};
    if (qobject_cast<const Chip*>(widget)) return widget->parentWidget()->accessibleName();
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const QString name = button && !button->text().isEmpty() ? button->text() : widget->accessibleName();
    return name.isEmpty() ? widget->metaObject()->className() : name;
  }
  /// What an event on a control, or a key wherever it is pressed, may do to the document.
  static QString mayDo(const QString& what) {
    static const QStringList rules =
        QString(
            "Sender:ping addition|Text:ping addition|Lands at (seconds):ping|App:ping|Type:ping|Add "
            "ping:addition|"
            "Lock screen:wallpaper|QDialog:wallpaper|drop:wallpaper|Pings:removal|QMenu:title ping|New:all|"
            "Title:title|Ctrl+Return:addition|Ctrl+D:addition|Ctrl+V:addition "
            "wallpaper|Ctrl+Z:all|Ctrl+Y:all|"
            "Ctrl+Shift+Z:all|Alt+Left:ping|Alt+Down:ping|Alt+Shift+Right:ping")
            .split('|');
    for (const QString& each : rules)
      if (each.section(':', 0, 0) == what) return each.section(':', 1);
    return {};
  }
  /// Of another ping than the one that is worked on, all that differs is too much.
  static QString difference(const Former& former, const SequenceDocument& after) {
    const SequenceDocument& before = former.document;
    const auto lacking = [](const QList<Ping>& pings, const QList<Ping>& others) {
      return std::count_if(pings.begin(), pings.end(),
                           [&](const Ping& each) { return !others.contains(each); });
    };
    const auto gone = lacking(before.notifications, after.notifications);
    const auto come = lacking(after.notifications, before.notifications);
    QStringList parts;
    if (before.title != after.title) parts << "title";
    if (before.wallpaper != after.wallpaper || before.wallpaperUrl != after.wallpaperUrl)
      parts << "wallpaper";
    const bool isSelected =
        std::any_of(before.notifications.begin(), before.notifications.end(), [&](const Ping& each) {
          return (each.id == former.selectedId || each.id == former.currentId) &&
                 !after.notifications.contains(each);
        });
    if (gone > 1 || come > 1 || (gone && come && !isSelected)) return "all";
    if (gone || come) parts << (gone && come ? "ping" : gone ? "removal" : "addition");
    return parts.size() > 1 || (parts.isEmpty() && !(before == after)) ? "all" : parts.join(' ');
  }

  // What the monkey does. Each says what it did, and to which control.

  QString pressKey() {
    static const QStringList keys =
        QString(
            "Tab Tab Tab Tab Backtab Backtab Space Space Return Return Esc Left Right Up Down Home End PgUp "
            "PgDown Del Del Backspace A 1 , Ctrl+A Ctrl+C Ctrl+X Ctrl+V Ctrl+V Ctrl+Z Ctrl+Z Ctrl+Z "
            "Ctrl+Shift+Z Ctrl+Y Ctrl+Return Ctrl+D Ctrl+E Ctrl+P F1 Alt+Left Alt+Down Alt+Shift+Right "
            "Ctrl+N Ctrl+W Ctrl+Q")
            .split(' ');
    const QKeyCombination pressed = QKeySequence(anyOf(keys))[0];
    const bool isCtrl = pressed.keyboardModifiers() == Qt::ControlModifier;
    const bool ends = isCtrl && (pressed.key() == Qt::Key_W || pressed.key() == Qt::Key_Q);
    const bool opens = isCtrl && pressed.key() == Qt::Key_N;
    if ((ends && !oneIn(8)) || (opens && windows().size() > 2)) return {};
    QWindow* window = QApplication::focusWindow();
    if (!window) return {};
    static const QStringList clips{"a\nb\r\nc\td", "e\u2028f\u2029g",     "1,5",
                                   "-2",           "👍🏽 مرحبا", QString(300, u'w')};
    if (pressed.key() == Qt::Key_V && oneIn(2)) QApplication::clipboard()->setText(anyOf(clips));
    if (pressed.key() == Qt::Key_V && oneIn(9))
      QApplication::clipboard()->setImage(QImage(2, 2, QImage::Format_RGB32));
    QWidget* popup = QApplication::activePopupWidget();
    // Alt alone closes a menu, and its window does not live to see the rest of the key.
    if (popup && (pressed.keyboardModifiers() & Qt::AltModifier)) return {};
    QWidget* top = QWidget::find(window->winId());
    QWidget* on = popup ? popup : top && top->focusWidget() ? top->focusWidget() : top;
    const QString name = nameOf(on);
    mayClose_ = ends || name == "Close";
    const QString key = QKeySequence(pressed).toString();
    QString may = mayDo(name) + ' ' + mayDo(key);
    if (on == top && (key == "Del" || key == "Ctrl+X")) may += " removal";
    isReversible_ = !may.contains("all");
    if (oneIn(4)) {
      isReversible_ = false;
      QKeyEvent held(QEvent::KeyPress, pressed.key(), pressed.keyboardModifiers(), {}, true);
      for (int i = 0; i < 3 && on; ++i) QApplication::sendEvent(window, &held);
    } else {
      QTest::keyClick(window, pressed.key(), pressed.keyboardModifiers());
    }
    say("key " + key, name);
    return may;
  }
  QString drop(StudioWindow* window) {
    QMimeData carried;
    const bool isPhoto = oneIn(2);
    carried.setUrls({QUrl::fromLocalFile(isPhoto ? "/a/b.png" : "/a/b.txt")});
    QDragEnterEvent enter({600, 400}, Qt::CopyAction | Qt::MoveAction, &carried, {}, {});
    enter.ignore();
    QApplication::sendEvent(window, &enter);
    EXPECT_EQ(enter.isAccepted(), isPhoto && !window->findChild<Alert*>()->isOpen());
    if (!enter.isAccepted()) return {};
    QDropEvent dropped(QPointF(600, 400), Qt::CopyAction | Qt::MoveAction, &carried, {}, {});
    QApplication::sendEvent(window, &dropped);
    EXPECT_EQ(dropped.dropAction(), Qt::CopyAction) << "Nobody's photo is moved away.";
    return say("photo", "drop");
  }
  QString click(StudioWindow* window) {
    QList<QWidget*> controls{window};
    for (QWidget* each : window->findChildren<QWidget*>())
      if (each->isVisible() && (qobject_cast<QAbstractButton*>(each) || qobject_cast<QLineEdit*>(each) ||
                                qobject_cast<TimelineList*>(each) || qobject_cast<TopBar*>(each)))
        controls.append(each);
    QWidget* control = anyOf(controls);
    const QPoint at = control->mapTo(window, QPoint(below(control->width()), below(control->height())));
    QWidget* on = window->childAt(at);
    if (!on) on = window;
    // A click that closes a menu may go on to what is under it.
    const QString under = nameOf(on);
    if (QWidget* popup = QApplication::activePopupWidget()) on = popup;
    const QString name = nameOf(on);
    QWindow* surface = window->windowHandle();
    if ((name == "Close" && !oneIn(8)) || !QRect({}, surface->size()).contains(at)) return {};
    mayClose_ = name == "Close";
    if (oneIn(8) && name != "Pings" && name != "Add ping" && name != "New") {
      QTest::mouseDClick(surface, Qt::LeftButton, {}, at);
    } else if (oneIn(8)) {
      QTest::mousePress(surface, Qt::LeftButton, {}, at);
      for (int i = 0; i < 3; ++i) QTest::mouseMove(surface, at + QPoint(below(60) - 30, below(60) - 30));
      QTest::mouseRelease(surface, Qt::LeftButton, {}, at + QPoint(below(60) - 30, below(60) - 30));
    } else if (oneIn(4)) {
      const QPoint turned(0, 120 * (below(7) - 3));
      QWheelEvent wheel(at, surface->mapToGlobal(at), {}, turned, {}, {}, Qt::NoScrollPhase, false);
      QApplication::sendEvent(surface, &wheel);
    } else {
      QTest::mouseClick(surface, oneIn(10) ? Qt::RightButton : Qt::LeftButton, {}, at);
    }
    return say("click", name) + ' ' + mayDo(under);
  }
  QString answerDialog() {
    for (QWidget* each : QApplication::topLevelWidgets()) {
      auto* dialog = qobject_cast<QDialog*>(each);
      if (!dialog || !dialog->isVisible()) continue;
      dialog->done(oneIn(3) ? QDialog::Rejected : QDialog::Accepted);
      return say("answer", "QDialog");
    }
    return {};
  }
  QString moveExport() {
    if (exports_.isEmpty()) return {};
    const auto run = anyOf(exports_);
    if (!oneIn(3)) {
      run->progress(below(100), 100);
      return say("progress");
    }
    run->fails = oneIn(2);
    end(run);
    return say(run->fails ? "fail" : "finish");
  }
  void end(const std::shared_ptr<Export>& run) {
    mayClose_ = true;
    exports_.removeOne(run);
    run->promise.finish();
  }
  QString treat(StudioWindow* window) {
    const std::pair<const char*, std::function<void()>> treatments[]{
        {"minimise", [&] { window->showMinimized(); }},
        {"restore", [&] { window->showNormal(); }},
        {"resize", [&] { window->resize(1180 + below(400), 780 + below(200)); }},
        {"other program", [&] { other_.show(), other_.activateWindow(); }},
        {"wait", [&] { nowMs_ += below(3000), QTest::qWait(20); }},
        {"activate", [&] { window->activateWindow(); }},
    };
    const auto& [name, treatment] = treatments[below(6)];
    treatment();
    return say(name);
  }
  QString say(const QString& what, const QString& name = {}) {
    acts_.append(QString("%1 %2").arg(what, name));
    if (acts_.size() > 12) acts_.removeFirst();
    return mayDo(name);
  }

  /// Lets all happen that follows from an event. Most of the time nothing is painted, which takes the
  /// longest.
  void settle() {
    if (oneIn(8)) QTest::qWait(0);
    QThreadPool::globalInstance()->waitForDone();
    for (const int kind : {QEvent::MetaCall, QEvent::FutureCallOut, QEvent::MetaCall, QEvent::LayoutRequest,
                           QEvent::DeferredDelete})
      QCoreApplication::sendPostedEvents(nullptr, kind);
  }
  void step() {
    if (windows().isEmpty()) app_.openWindow();
    const QList<StudioWindow*> before = windows();
    for (StudioWindow* each : before)
      if (each->objectName().isEmpty()) each->setObjectName(QString::number(1'000'000 + steps_));
    // Somebody else's window manager would do this.
    QWidget* active = QApplication::activeWindow();
    if (!active || !active->isVisible() || (active == &other_ && oneIn(3))) before.first()->activateWindow();
    QHash<StudioWindow*, Former> former;
    for (StudioWindow* each : before) {
      const auto* list = each->findChild<TimelineList*>();
      const QString current = list->currentRow() < 0 ? QString() : list->ping(list->currentRow()).id;
      former.insert(each, {each->view().document(), each->view().selectedPingId(), current});
      each->view().endTyping();
    }
    mayClose_ = false;
    isReversible_ = true;
    ++steps_;

    StudioWindow* window = anyOf(before);
    const int choice = below(40);
    const QString mayChange = choice < 17   ? pressKey()
                              : choice < 33 ? click(window)
                              : choice < 35 ? answerDialog()
                              : choice < 37 ? moveExport()
                              : choice < 38 ? drop(window)
                                            : treat(window);
    settle();
    for (const auto& each : QList(exports_))
      if (each->stop.stop_requested()) end(each);
    settle();

    const testing::ScopedTrace trace(__FILE__, __LINE__, acts_.join(" | ").toStdString());
    const QList<StudioWindow*> after = windows();
    qsizetype changed = 0, exporting = 0;
    for (StudioWindow* each : before) {
      if (!after.contains(each)) {
        EXPECT_TRUE(mayClose_) << "A window has closed by itself.";
        continue;
      }
      const QString what = difference(former[each], each->view().document());
      if (what.isEmpty()) continue;
      ++changed;
      if (isReversible_ && oneIn(3)) expectReversible(each->view(), former[each]);
      EXPECT_TRUE(mayChange.contains("all") || mayChange.split(' ').contains(what))
          << "Nobody asked for this: " << what.toStdString();
    }
    EXPECT_LE(changed, 1) << "Windows share nothing.";
    for (StudioWindow* each : after) {
      expectShown(each);
      exporting += each->view().exporting();
    }
    EXPECT_EQ(exporting, exports_.size());
    expectKeyboardIsAlive();
  }

  static void expectReversible(StudioView& view, const Former& former) {
    const SequenceDocument changed = view.document();
    view.undo();
    EXPECT_EQ(view.document(), former.document) << "Undo goes back to what was.";
    EXPECT_EQ(view.selectedPingId(), former.selectedId);
    view.redo();
    EXPECT_EQ(view.document(), changed);
  }
  static void expectShown(StudioWindow* window) {
    const StudioView& view = window->view();
    const auto edit = [&](const char* name) { return named<StudioLineEdit>(window, {name}); };
    const auto shown = [&](const char* name) { return edit(name)->displayText().replace('\t', ' '); };
    EXPECT_EQ(view.player()->document(), view.document());
    EXPECT_EQ(view.player()->elapsedMs() == SequencePlayer::finishedMs, !view.isPlaying());
    EXPECT_EQ(shown("Title"), view.document().title);
    EXPECT_EQ(shown("Sender"), view.senderText());
    EXPECT_EQ(shown("Text"), view.messageText());
    EXPECT_EQ(shown("App name"), view.customAppLabel());
    const auto* delay = edit("Lands at (seconds)");
    EXPECT_EQ(!delay->parentWidget()->isHidden(), view.selectedPingId().has_value());
    EXPECT_TRUE(delay->hasFocus() || delay->text() == view.delayText()) << delay->text().toStdString();
    EXPECT_EQ(named<StudioButton>(window, {"Play", "Playing"})->isEnabled(), view.canPlay());
    EXPECT_EQ(named<StudioButton>(window, {"Export", "Exporting"})->isEnabled(), view.canExport());
    const auto* list = window->findChild<TimelineList*>();
    ASSERT_EQ(list->rowCount(), view.document().notifications.size());
    for (qsizetype i = 0, top = 0; i < list->rowCount(); ++i) {
      EXPECT_EQ(list->ping(i), view.document().notifications[i]);
      const QRect row = list->rowRect(i);
      EXPECT_EQ(row.top(), top);
      EXPECT_EQ(row.height(), TimelineRow(list->ping(i), list->width()).height());
      top += row.height() + TimelineList::rowSpacing;
      EXPECT_EQ(list->isSelected(i), view.selectedIndex() == i);
    }
    const auto* alert = window->findChild<Alert*>();
    const bool asks = alert->isOpen() && alert->accessibleName() == "Stop the export?";
    const bool tellsKeys = alert->isOpen() && alert->accessibleName().startsWith("Keys");
    EXPECT_EQ(alert->isOpen(), asks || tellsKeys || !view.error().isEmpty());
    EXPECT_TRUE(!alert->isOpen() || (asks        ? view.exporting()
                                     : tellsKeys ? view.error().isEmpty()
                                                 : alert->accessibleDescription() == view.error()));
  }
  static void expectKeyboardIsAlive() {
    const auto* window = qobject_cast<StudioWindow*>(QApplication::activeWindow());
    const QWidget* focus = QApplication::focusWidget();
    for (StudioWindow* each : windows()) {
      for (const FocusMark* mark : each->findChildren<FocusMark*>())
        EXPECT_TRUE(!mark->isShown() || mark->parent() == focus) << "A mark is left behind.";
    }
    if (!window || QApplication::activePopupWidget()) return;
    const auto* alert = window->findChild<Alert*>();
    EXPECT_TRUE(!alert->isOpen() || alert == focus || alert->isAncestorOf(focus))
        << "The alert has the keyboard.";
    EXPECT_TRUE(focus && focus->isVisible() && focus->isEnabled() && focus->window() == window)
        << "The keyboard is dead at " << nameOf(focus).toStdString();
  }

  std::mt19937 random_;
  double nowMs_ = 0;
  std::atomic<int> photos_ = 0;
  QList<std::shared_ptr<Export>> exports_;
  BriskletApp app_{services(), [](QWidget* window) { return std::make_unique<DialogPanels>(window); }};
  QWidget other_;
  QStringList acts_;
  int steps_ = 0;
  bool mayClose_ = false;
  /// The event was one change, which one undo takes back.
  bool isReversible_ = true;
};

TEST(MonkeyTest, whateverIsPressedTheStudioStands) {
  const auto from = [](const char* name, int otherwise) {
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : otherwise;
  };
  const auto seed = static_cast<unsigned>(from("BRISKLET_MONKEY_SEED", 1));
  const std::string printed = "BRISKLET_MONKEY_SEED=" + std::to_string(seed);
  std::cout << printed << std::endl;
  SCOPED_TRACE(printed);
  QApplication::setQuitOnLastWindowClosed(false);
  Monkey(seed).workFor(1000LL * from("BRISKLET_MONKEY_SECONDS", 5));
}

}  // namespace
}  // namespace brisklet
