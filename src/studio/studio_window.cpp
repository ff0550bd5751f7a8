#include "studio/studio_window.h"

#include "studio/alert.h"
#include "studio/controls/accessibility.h"
#include "studio/controls/column_area.h"
#include "studio/controls/palette.h"
#include "studio/controls/rule.h"
#include "studio/inspector.h"
#include "studio/keys_sheet.h"
#include "studio/stage.h"
#include "studio/timeline.h"
#include "studio/timeline_list.h"
#include "studio/top_bar.h"
#include "studio/window_frame.h"

#include <QClipboard>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QShortcut>
#include <QTimer>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

StudioView::Services withPanels(StudioView::Services services, FilePanels* panels) {
  services.panels = panels;
  return services;
}

}  // namespace

StudioWindow::StudioWindow(StudioView::Services services, const MakePanels& makePanels)
    : panels_(makePanels(this)),
      view_(std::make_unique<StudioView>(withPanels(std::move(services), panels_.get()))),
      topBar_(new TopBar(this)),
      rule_(new Rule(this)),
      inspector_(new Inspector),
      inspectorArea_(new ColumnArea(inspector_, this)),
      stage_(new Stage(this)),
      timeline_(new Timeline),
      timelineArea_(new ColumnArea(timeline_, this)),
      alert_(new Alert(this)),
      frame_(new WindowFrame(this)) {
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleRole(this, QAccessible::Window);
  setMinimumSize(leastSize);
  // A click beside all controls takes the focus from a field.
  setFocusPolicy(Qt::ClickFocus);
  setAcceptDrops(true);

  connectTopBar();
  connectInspector();
  connectTimeline();
  connectStage();
  connectView();
  addShortcuts();
  connect(frame_, &WindowFrame::zoomedChanged, this, [this] { topBar_->setZoomed(frame_->isZoomed()); });
  connect(alert_, &Alert::dragged, frame_, &WindowFrame::drag);
  connect(alert_, &Alert::confirmed, this, [this] {
    asksToStop_ = false;
    closesAfterExport_ = true;
    view_->stopExport();
  });
  connect(alert_, &Alert::cancelled, this, [this] {
    if (!std::exchange(asksToStop_, false)) view_->dismissError();
    showError();
  });

  stage_->setPlayer(view_->player());
  showState();
  setFocus();
}

StudioWindow::~StudioWindow() {
  // Nothing of the editor's end is shown any more.
  view_->disconnect(this);
  stage_->setPlayer(nullptr);
}

QSize StudioWindow::openingSize(const QSize& room) {
  return defaultSize.boundedTo(room).expandedTo(leastSize);
}

void StudioWindow::connectTopBar() {
  connect(topBar_, &TopBar::titleEdited, view_.get(), &StudioView::setTitle);
  connect(topBar_, &TopBar::titleFinished, view_.get(), &StudioView::endTyping);
  connect(topBar_, &TopBar::newPressed, view_.get(), &StudioView::startNew);
  connect(topBar_, &TopBar::playPressed, view_.get(), &StudioView::play);
  connect(topBar_, &TopBar::exportPressed, view_.get(), &StudioView::exportMovie);
  connect(topBar_, &TopBar::minimisePressed, this, &QWidget::showMinimized);
  connect(topBar_, &TopBar::zoomPressed, frame_, &WindowFrame::toggleZoom);
  connect(topBar_, &TopBar::closePressed, this, &QWidget::close);
  connect(topBar_, &TopBar::dragged, frame_, &WindowFrame::drag);
}

void StudioWindow::connectInspector() {
  connect(inspector_, &Inspector::wallpaperPicked, view_.get(), &StudioView::pickWallpaper);
  connect(inspector_, &Inspector::photoChipPressed, view_.get(), &StudioView::pickPhotoChip);
  connect(inspector_, &Inspector::appPicked, view_.get(), &StudioView::pickApp);
  connect(inspector_, &Inspector::customAppLabelEdited, view_.get(), &StudioView::setCustomAppLabel);
  connect(inspector_, &Inspector::typePicked, view_.get(), &StudioView::pickType);
  connect(inspector_, &Inspector::senderEdited, view_.get(), &StudioView::setSenderText);
  connect(inspector_, &Inspector::messageEdited, view_.get(), &StudioView::setMessageText);
  connect(inspector_, &Inspector::delayEdited, view_.get(), &StudioView::setDelayText);
  connect(inspector_, &Inspector::editingFinished, view_.get(), &StudioView::endTyping);
  connect(inspector_, &Inspector::addPingPressed, this, [this] {
    view_->addPing();
    // Whoever presses it by keyboard may press it again.
    if (focusWidget() == this || qobject_cast<QLineEdit*>(focusWidget()))
      inspector_->focusMessage(Qt::OtherFocusReason);
  });
  connect(inspector_, &Inspector::enterPressed, this, [this] {
    if (view_->selectedPingId())
      setFocus(Qt::OtherFocusReason);
    else
      addPing();
  });
}

void StudioWindow::connectTimeline() {
  connect(timeline_, &Timeline::pingPressed, view_.get(), &StudioView::selectPing);
  connect(timeline_, &Timeline::removePressed, view_.get(), &StudioView::removePing);
  connect(timeline_, &Timeline::revealRequested, timelineArea_, &ColumnArea::reveal);
}

void StudioWindow::connectStage() {
  connect(stage_, &Stage::cardPressed, view_.get(), [this](const Ping& ping) {
    if (view_->selectedPingId() != ping.id) view_->selectPing(ping);
  });
  connect(stage_, &Stage::besidePressed, view_.get(), &StudioView::clearSelection);
}

void StudioWindow::connectView() {
  for (const auto signal :
       {&StudioView::documentChanged, &StudioView::selectionChanged, &StudioView::draftsChanged})
    connect(view_.get(), signal, this, &StudioWindow::showState);
  connect(view_.get(), &StudioView::playerReplaced, this, [this] { stage_->setPlayer(view_->player()); });
  for (const auto signal :
       {&StudioView::playingChanged, &StudioView::exportProgressChanged, &StudioView::playerReplaced})
    connect(view_.get(), signal, this, &StudioWindow::showTopBar);
  connect(view_.get(), &StudioView::exportingChanged, this, [this] {
    showTopBar();
    if (view_->exporting()) return;
    if (view_->error().isEmpty() && !closesAfterExport_) announce(this, u"The movie is finished."_s);
    if (std::exchange(asksToStop_, false)) {
      // It ended while the question was asked: the window closes as was wished, unless there is bad news.
      alert_->dismiss();
      closesAfterExport_ = view_->error().isEmpty();
      showError();
    }
    if (std::exchange(closesAfterExport_, false)) QTimer::singleShot(0, this, &QWidget::close);
  });
  // Once all that changes with it has changed: the alert gives the focus back to the Export button, say.
  connect(view_.get(), &StudioView::errorChanged, this, &StudioWindow::showError, Qt::QueuedConnection);
}

void StudioWindow::addShortcuts() {
  const auto add = [this](QKeySequence::StandardKey key, const QKeySequence& plain, auto action) {
    QList<QKeySequence> keys = QKeySequence::keyBindings(key);
    if (!keys.contains(plain)) keys.append(plain);
    for (const QKeySequence& each : keys)
      connect(new QShortcut(each, this), &QShortcut::activated, this, action);
  };
  add(QKeySequence::New, Qt::CTRL | Qt::Key_N, [this] { Q_EMIT newWindowRequested(); });
  add(QKeySequence::Close, Qt::CTRL | Qt::Key_W, [this] { close(); });
  add(QKeySequence::Quit, Qt::CTRL | Qt::Key_Q, [this] { Q_EMIT quitRequested(); });

  const auto command = [this](const QList<QKeySequence>& keys, bool repeats, auto action) {
    for (const QKeySequence& key : keys) {
      auto* shortcut = new QShortcut(key, this);
      shortcut->setAutoRepeat(repeats);
      connect(shortcut, &QShortcut::activated, this, [this, action] {
        if (!alert_->isOpen()) action();
      });
    }
  };
  command({Qt::CTRL | Qt::Key_Return, Qt::CTRL | Qt::Key_Enter}, false, [this] { addPing(); });
  const auto selected = [this] { return view_->selectedPingId().value_or(rowInFocus()); };
  command({Qt::CTRL | Qt::Key_D}, false, [=, this] { view_->duplicatePing(selected()); });
  command({Qt::CTRL | Qt::Key_P}, false, [this] { view_->play(); });
  command({Qt::CTRL | Qt::Key_E}, false, [this] { view_->exportMovie(); });
  command({Qt::Key_F1}, false, [this] { alert_->open(keysSheet()); });
  const auto nudge = [&](Qt::Modifiers modifiers, double ms) {
    command({modifiers | Qt::Key_Left, modifiers | Qt::Key_Up}, true,
            [=, this] { view_->nudgePing(selected(), -ms); });
    command({modifiers | Qt::Key_Right, modifiers | Qt::Key_Down}, true,
            [=, this] { view_->nudgePing(selected(), ms); });
  };
  nudge(Qt::ALT, 100);
  nudge(Qt::ALT | Qt::SHIFT, 10);
}

void StudioWindow::addPing() {
  view_->addPing();
  inspector_->focusMessage(Qt::ShortcutFocusReason);
}

QString StudioWindow::rowInFocus() const {
  const TimelineList* list = timeline_->list();
  if (list->hasFocus() && list->currentRow() >= 0) return list->ping(list->currentRow()).id;
  return view_->selectedPingId().value_or(QString());
}

void StudioWindow::copyPing() const {
  const QByteArray scene = view_->copiedPing(rowInFocus());
  if (!scene.isEmpty()) QGuiApplication::clipboard()->setText(QString::fromUtf8(scene));
}

void StudioWindow::paste() {
  const QMimeData* carried = QGuiApplication::clipboard()->mimeData();
  if (carried && !takePhoto(*carried) && carried->hasText()) view_->pastePings(carried->text().toUtf8());
}

bool StudioWindow::isPhoto(const QMimeData& carried) const {
  const QList<QUrl> urls = carried.urls();
  if (urls.isEmpty()) return carried.hasImage() && !carried.hasText();
  return urls.size() == 1 && urls.first().isLocalFile() && view_->isOffered(urls.first().toLocalFile());
}

bool StudioWindow::takePhoto(const QMimeData& carried) {
  if (!isPhoto(carried)) return false;
  if (carried.hasUrls())
    view_->usePhoto(carried.urls().first().toLocalFile());
  else
    view_->usePhoto(qvariant_cast<QImage>(carried.imageData()));
  return true;
}

void StudioWindow::dragEnterEvent(QDragEnterEvent* event) {
  if (alert_->isOpen() || !isPhoto(*event->mimeData())) return;
  // Not moved, which would have the other program delete it.
  event->setDropAction(Qt::CopyAction);
  event->accept();
  stage_->setNote(u"Drop the photo to use it here"_s);
}

void StudioWindow::dragLeaveEvent(QDragLeaveEvent*) {
  stage_->setNote({});
}

void StudioWindow::dropEvent(QDropEvent* event) {
  stage_->setNote({});
  if (!takePhoto(*event->mimeData())) return;
  event->setDropAction(Qt::CopyAction);
  event->accept();
}

void StudioWindow::showState() {
  const SequenceDocument& document = view_->document();
  // Qt would add the program's name to the titles of panels, too.
  setWindowTitle(u"%1 — Brisklet"_s.arg(document.title.isEmpty() ? u"Untitled video"_s : document.title));
  showTopBar();
  inspector_->setState({.wallpaper = document.wallpaper,
                        .wallpaperUrl = document.wallpaperUrl,
                        .selectedAppId = view_->selectedAppId(),
                        .selectedTypeId = view_->selectedTypeId(),
                        .customAppLabel = view_->customAppLabel(),
                        .sender = view_->senderText(),
                        .message = view_->messageText(),
                        .selectedPingId = view_->selectedPingId(),
                        .delay = view_->delayText()});
  stage_->setDocument(document);
  // The list goes with its last row: what can be done next is to add one.
  const TimelineList* list = timeline_->list();
  if (document.notifications.isEmpty() && list->hasFocus())
    inspector_->focusAddPing(list->isMarked() ? Qt::TabFocusReason : Qt::OtherFocusReason);
  timeline_->setState(view_->summary(), document.notifications, view_->selectedPingId());
}

void StudioWindow::showTopBar() {
  const std::optional<double> progress =
      view_->exporting() ? std::optional(view_->exportProgress()) : std::nullopt;
  topBar_->setState({.title = view_->document().title,
                     .summary = view_->summary(),
                     .isPlaying = view_->isPlaying(),
                     .canPlay = view_->canPlay(),
                     .canExport = view_->canExport(),
                     .exportProgress = progress});
  rule_->setProgress(progress);
}

void StudioWindow::showError() {
  if (asksToStop_) return;
  if (view_->error().isEmpty())
    alert_->dismiss();
  else
    alert_->open(
        {.title = u"Something went wrong"_s, .message = view_->error(), .confirm = {}, .cancel = u"OK"_s});
}

void StudioWindow::askToStop() {
  asksToStop_ = true;
  alert_->open({.title = u"Stop the export?"_s,
                .message = u"The movie is not finished yet."_s,
                .confirm = u"Stop"_s,
                .cancel = u"Keep Exporting"_s});
}

void StudioWindow::closeEvent(QCloseEvent* event) {
  if (!view_->exporting()) return;
  event->ignore();
  if (!closesAfterExport_) askToStop();
}

void StudioWindow::keyPressEvent(QKeyEvent* event) {
  // The selected ping counts as in focus where nothing else is.
  const bool isOnRow = timeline_->list()->hasFocus() || (hasFocus() && view_->selectedPingId());
  if (event->matches(QKeySequence::Undo)) {
    view_->undo();
  } else if (event->matches(QKeySequence::Redo) || event->keyCombination() == (Qt::CTRL | Qt::Key_Y)) {
    view_->redo();
  } else if (event->matches(QKeySequence::Paste)) {
    paste();
  } else if (event->matches(QKeySequence::Copy) && isOnRow) {
    copyPing();
  } else if (event->matches(QKeySequence::Cut) && isOnRow) {
    copyPing();
    view_->removePing(rowInFocus());
  } else if (event->key() == Qt::Key_Delete && isOnRow && !event->isAutoRepeat()) {
    view_->removePing(rowInFocus());
  } else if (event->key() == Qt::Key_Space && hasFocus()) {
    view_->play();
  } else if (event->key() == Qt::Key_Escape && view_->selectedPingId()) {
    view_->clearSelection();
  } else if (event->key() == Qt::Key_Escape) {
    setFocus(Qt::OtherFocusReason);
  } else {
    QWidget::keyPressEvent(event);
  }
}

void StudioWindow::paintEvent(QPaintEvent*) {
  QPainter(this).fillRect(rect(), Studio::white);
}

void StudioWindow::resizeEvent(QResizeEvent*) {
  const int top = TopBar::barHeight + Rule::thickness;
  const int column = ColumnArea::columnWidth;
  topBar_->setGeometry(0, 0, width(), TopBar::barHeight);
  rule_->setGeometry(0, TopBar::barHeight, width(), Rule::thickness);
  inspectorArea_->setGeometry(0, top, column, height() - top);
  stage_->setGeometry(column, top, width() - 2 * column, height() - top);
  timelineArea_->setGeometry(width() - column, top, column, height() - top);
}

}  // namespace brisklet
