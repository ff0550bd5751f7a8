#include "backdrops.h"
#include "desktop/file_panels.h"
#include "model/catalogue.h"
#include "sheet.h"
#include "sheets.h"
#include "studio/alert.h"
#include "studio/app_chip.h"
#include "studio/controls/column_area.h"
#include "studio/controls/palette.h"
#include "studio/controls/rule.h"
#include "studio/controls/studio_button.h"
#include "studio/controls/studio_field.h"
#include "studio/controls/window_button.h"
#include "studio/picture_chip.h"
#include "studio/studio_window.h"
#include "studio/timeline_list.h"
#include "studio/top_bar.h"
#include "studio/type_chip.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QEventLoop>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>
#include <QToolTip>
#include <chrono>
#include <functional>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace brisklet {

namespace {

/// How a control is used at a moment.
struct State {
  QString name;
  bool isHovered = false, isPressed = false, isFocused = false, isSelected = false, isDisabled = false;
};
const State rest{.name = u"rest"_s}, hovered{.name = u"hovered"_s, .isHovered = true},
    pressed{.name = u"pressed"_s, .isHovered = true, .isPressed = true},
    focused{.name = u"focused"_s, .isFocused = true}, selected{.name = u"selected"_s, .isSelected = true},
    selectedFocused{.name = u"selected, focused"_s, .isFocused = true, .isSelected = true},
    disabled{.name = u"disabled"_s, .isDisabled = true};

void settle() {
  for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

void waitFor(std::chrono::milliseconds time) {
  QEventLoop loop;
  QTimer::singleShot(time, &loop, &QEventLoop::quit);
  loop.exec();
}

/// Until cards that have begun to move stand still.
void settleCards() {
  waitFor(1500ms);
}

QImage pictureOf(QWidget& widget, int scale) {
  QImage image(widget.size() * scale, QImage::Format_RGB32);
  image.setDevicePixelRatio(scale);
  image.fill(Qt::magenta);
  widget.render(&image);
  image.setDevicePixelRatio(1);
  return image;
}

/// A control alone on its ground, shown and active, so that it can have the keyboard's focus.
class Host {
 public:
  Host(QWidget* control, const QSize& size, const QColor& ground) : control_(control) {
    constexpr int room = 8;
    QPalette palette = host_.palette();
    palette.setColor(QPalette::Window, ground);
    host_.setPalette(palette);
    host_.setAutoFillBackground(true);
    host_.resize(size + QSize(2 * room, 2 * room));
    // Somebody else may have the focus at first.
    host_.setFocusPolicy(Qt::StrongFocus);
    control->setParent(&host_);
    control->setGeometry(QRect(QPoint(room, room), size));
    host_.show();
    host_.activateWindow();
    host_.setFocus();
    settle();
  }

  QImage picture(int scale) {
    settle();
    return pictureOf(host_, scale);
  }

 private:
  QWidget host_;
  QWidget* control_;
};

void put(QAbstractButton* button, const State& state) {
  if (auto* chip = qobject_cast<Chip*>(button)) chip->setSelected(state.isSelected);
  // Where a pointer happens to be does not matter.
  button->setAttribute(Qt::WA_UnderMouse, state.isHovered);
  button->setDown(state.isPressed);
  if (state.isFocused) {
    button->clearFocus();
    button->setFocus(Qt::TabFocusReason);
  }
  button->setEnabled(!state.isDisabled);
}

void addButtons(Sheet& sheet) {
  const QList<State> usable = {rest, hovered, pressed, focused};
  const QList<State> plain = usable + QList<State>{disabled};
  const QList<State> chips = usable + QList<State>{selected, selectedFocused};
  const auto button = [](const QString& title, const QString& symbol, ButtonLook look) {
    return [=] { return new StudioButton(title, symbol, look); };
  };
  const auto windowButton = [](const QString& symbol) {
    return [=] { return new WindowButton(symbol, {}); };
  };
  struct Row {
    QString heading;
    QColor ground;
    /// That of the control's own wish where it is not valid.
    QSize size;
    QList<State> states;
    std::function<QAbstractButton*()> make;
  };
  const QList<Row> rows = {
      {u"StudioButton"_s, Studio::white, {}, plain, button(u"New"_s, {}, ButtonLook::Flat)},
      {u"with a symbol"_s, Studio::white, {}, plain, button(u"Play"_s, u"play.fill"_s, ButtonLook::Flat)},
      {u"solid"_s,
       Studio::white,
       {},
       plain,
       button(u"Export"_s, u"square.and.arrow.down"_s, ButtonLook::Solid)},
      {u"WindowButton"_s, Studio::white, {}, usable, windowButton(u"window.minimise"_s)},
      {{}, Studio::white, {}, usable, windowButton(u"window.zoom"_s)},
      {{}, Studio::white, {}, usable, windowButton(u"window.close"_s)},
      {u"wide"_s, Studio::paper, {252, 34}, usable, button(u"Add ping"_s, {}, ButtonLook::Wide)},
      {u"TypeChip"_s,
       Studio::paper,
       {122, 28},
       chips,
       [] { return new TypeChip(PingType::types(u"instagram"_s).at(1)); }},
      {u"PictureChip"_s, Studio::paper, {44, 44}, chips, [] { return new PictureChip(u"one"_s, {}); }},
      {u"of the user's own"_s, Studio::paper, {44, 44}, chips, [] { return new PictureChip(customId, {}); }},
      {u"AppChip"_s,
       Studio::paper,
       {36, 36},
       chips,
       [] { return new AppChip(AppPreset::named(u"instagram"_s)); }},
  };
  for (const Row& row : rows) {
    sheet.startRow(row.heading);
    for (const State& state : row.states) {
      QAbstractButton* control = row.make();
      Host host(control, row.size.isValid() ? row.size : control->sizeHint(), row.ground);
      put(control, state);
      sheet.add(host.picture(2), state.name);
    }
  }
}

void addFields(Sheet& sheet) {
  sheet.startRow(u"StudioField"_s);
  struct Case {
    QString caption, text;
    bool isFocused = false, selectsAll = false, isHovered = false;
  };
  for (const Case& c :
       {Case{u"text"_s, u"Mom gjpqy"_s}, Case{u"hovered"_s, u"Mom gjpqy"_s, false, false, true},
        Case{u"empty"_s, {}}, Case{u"focused"_s, u"Mom gjpqy"_s, true}, Case{u"empty, focused"_s, {}, true},
        Case{u"all selected"_s, u"are you awake"_s, true, true},
        Case{u"long"_s, u"A text that is far too long for the field, and goes on"_s},
        Case{u"right to left"_s, u"رسالة طويلة جدا, and then to the right"_s},
        Case{u"scripts"_s, u"ÅÉ 渋谷 ที่นี่ 🥹🔥 हिन्दी"_s}}) {
    auto* field = new StudioField(u"Sender"_s);
    Host host(field, {252, field->sizeHint().height()}, Studio::paper);
    field->setText(c.text);
    field->edit()->setAttribute(Qt::WA_UnderMouse, c.isHovered);
    if (c.isFocused) field->edit()->setFocus(Qt::TabFocusReason);
    if (c.selectsAll)
      field->edit()->selectAll();
    else
      field->edit()->deselect();
    sheet.add(host.picture(2), c.caption);
  }
}

void sendMouse(QWidget* to, QEvent::Type type, const QPointF& at) {
  const Qt::MouseButton button = type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton;
  QMouseEvent event(type, at, to->mapToGlobal(at), button, button, {});
  QApplication::sendEvent(to, &event);
}

void addTimelineRows(Sheet& sheet) {
  sheet.startRow(u"TimelineList"_s);
  struct Case {
    State state;
    bool isOnRemove = false;
    QString title = u"@maya"_s, message = u"commented: this is so real"_s;
  };
  const auto named = [](State state, const QString& name) {
    state.name = name;
    return state;
  };
  for (const Case& c :
       {Case{rest}, Case{hovered}, Case{pressed}, Case{focused}, Case{selected}, Case{selectedFocused},
        Case{named(hovered, u"remove hovered"_s), true}, Case{named(pressed, u"remove pressed"_s), true},
        Case{named(rest, u"long"_s), false, u"Northside Ceramics Studio & Kiln Co-operative"_s,
             u"sent you $1,840 for 🏺 October, thank you for every single late night at the wheel"_s},
        Case{named(rest, u"right to left"_s), false, u"محمد العربي"_s,
             u"رصيدك الآن ١٬٨٤٠ دولارًا، شكرًا جزيلاً لكم"_s},
        Case{named(rest, u"empty"_s), false, {}, {}}}) {
    auto* list = new TimelineList;
    const Ping ping = pingOf(u"instagram"_s, c.title, c.message, 2500);
    list->setPings({ping}, c.state.isSelected ? std::optional(ping.id) : std::nullopt);
    Host host(list, {252, TimelineRow(ping, 252).height()}, Studio::paper);
    const QPointF at = c.isOnRemove ? QRectF(list->removeRect(0)).center() : QPointF(120, 20);
    if (c.state.isHovered) sendMouse(list, QEvent::MouseMove, at);
    if (c.state.isPressed) sendMouse(list, QEvent::MouseButtonPress, at);
    if (c.state.isFocused) list->setFocus(Qt::TabFocusReason);
    sheet.add(host.picture(2), c.state.name);
  }
}

void addScrollBars(Sheet& sheet) {
  sheet.startRow(u"ColumnArea"_s);
  for (const State& state : {rest, hovered, pressed}) {
    auto* content = new QWidget;
    content->setFixedHeight(360);
    auto* area = new ColumnArea(content);
    Host host(area, {60, 120}, Studio::paper);
    area->reveal({0, 200, 10, 10});
    waitFor(200ms);
    QScrollBar* bar = area->verticalScrollBar();
    if (state.isHovered) {
      QHoverEvent hover(QEvent::HoverEnter, {6, 60}, bar->mapToGlobal(QPointF(6, 60)), {-1, -1});
      QApplication::sendEvent(bar, &hover);
      bar->setAttribute(Qt::WA_UnderMouse);
    }
    if (state.isPressed) sendMouse(bar, QEvent::MouseButtonPress, {6, 60});
    sheet.add(host.picture(2), state.name);
  }
}

void addAlerts(Sheet& sheet) {
  const Alert::Content question{.title = u"Stop the export?"_s,
                                .message = u"The movie is not finished yet."_s,
                                .confirm = u"Stop"_s,
                                .cancel = u"Keep Exporting"_s};
  const auto told = [](const QString& message) {
    return Alert::Content{u"Something went wrong"_s, message, {}, u"OK"_s};
  };
  const QString sentence = u"The movie could not be written. No space left on device. "_s;
  struct Case {
    QString caption;
    Alert::Content content;
    const char16_t* button = u"";
    State state = rest;
  };
  sheet.startRow(u"Alert"_s);
  for (const Case& c : {Case{u"rest"_s, question}, Case{u"confirm hovered"_s, question, u"Stop", hovered},
                        Case{u"confirm pressed"_s, question, u"Stop", pressed},
                        Case{u"confirm focused"_s, question, u"Stop", focused},
                        Case{u"cancel hovered"_s, question, u"Keep Exporting", hovered},
                        Case{u"cancel pressed"_s, question, u"Keep Exporting", pressed},
                        Case{u"cancel focused"_s, question, u"Keep Exporting", focused},
                        Case{u"only telling"_s, told(u"Could not open that photo."_s)},
                        Case{u"long"_s, told(sentence.repeated(4))}}) {
    QWidget room;
    room.resize(388, 280);
    room.show();
    room.activateWindow();
    Alert alert(&room);
    alert.open(c.content);
    settle();
    for (StudioButton* button : alert.findChildren<StudioButton*>()) {
      if (button->text() == QStringView(c.button)) put(button, c.state);
    }
    settle();
    sheet.add(pictureOf(room, 1), c.caption);
  }
}

class NoPanels : public FilePanels {
 public:
  void save(const SavePanel&, SaveDone done) override { done(std::nullopt); }
  void open(const OpenPanel&, Done done) override { done(std::nullopt); }
};

std::unique_ptr<StudioWindow> makeWindow(const QSize& size = StudioWindow::defaultSize) {
  auto window = std::make_unique<StudioWindow>(StudioView::Services(),
                                               [](QWidget*) { return std::make_unique<NoPanels>(); });
  window->resize(size);
  window->show();
  window->activateWindow();
  settle();
  return window;
}

void addPings(StudioView& view, int count) {
  const QList<AppPreset>& apps = AppPreset::all();
  for (int i = 0; i < count; ++i) {
    view.pickApp(apps.at(i % apps.size()).id);
    view.addPing();
  }
}

}  // namespace

QImage controlSheet(const QString&) {
  Sheet sheet(6, QColor(0xd8, 0xd8, 0xdc));
  addButtons(sheet);
  addFields(sheet);
  addTimelineRows(sheet);
  addScrollBars(sheet);
  addAlerts(sheet);
  return sheet.image();
}

QImage studioSheet(const QString&) {
  const auto longTexts = [](StudioWindow& window) {
    StudioView& view = window.view();
    view.setTitle(u"A title that is far too long for the room that it has in the bar"_s);
    const QList<std::pair<QString, QString>> texts = {
        {u"Northside Ceramics Studio & Kiln Co-operative"_s,
         u"sent you $1,840 for 🏺 October, thank you for every single late night at the wheel"_s},
        {u"محمد العربي"_s, u"رصيدك الآن ١٬٨٤٠ دولارًا، شكرًا جزيلاً لكم جميعا على كل شيء"_s},
        {u"渋谷スニーカー"_s, u"写真に「いいね！」しました。👟"_s},
        {}};
    addPings(view, int(texts.size()));
    const QList<Ping> pings = view.document().notifications;
    for (qsizetype i = 0; i < texts.size(); ++i) {
      view.selectPing(pings.at(i));
      view.setSenderText(texts.at(i).first);
      view.setMessageText(texts.at(i).second);
    }
    view.pickWallpaper(u"three"_s);
  };
  const auto exporting = [](StudioWindow& window) {
    addPings(window.view(), 3);
    window.view().pickWallpaper(u"two"_s);
    settle();
    window.findChild<TopBar*>()->setState(
        {.title = {}, .summary = window.view().summary(), .canPlay = true, .exportProgress = 0.42});
    window.findChild<Rule*>()->setProgress(0.42);
  };
  const auto alert = [](StudioWindow& window) {
    addPings(window.view(), 3);
    window.view().pickWallpaper(u"four"_s);
    settle();
    window.findChild<Alert*>()->open(
        {.title = u"Something went wrong"_s,
         .message = u"The movie could not be written. No space left on device."_s,
         .confirm = {},
         .cancel = u"OK"_s});
  };
  struct Case {
    QString caption;
    QSize size;
    std::function<void(StudioWindow&)> bring;
  };
  const QList<Case> cases = {
      {u"a new document"_s, StudioWindow::defaultSize, [](StudioWindow&) {}},
      {u"a ping selected"_s, StudioWindow::defaultSize,
       [](StudioWindow& window) {
         addPings(window.view(), 5);
         window.view().selectPing(window.view().document().notifications.at(2));
       }},
      {u"200 pings, a custom app, the least size"_s, StudioWindow::leastSize,
       [](StudioWindow& window) {
         addPings(window.view(), 200);
         window.view().pickApp(customId);
         window.view().setCustomAppLabel(u"Budget"_s);
       }},
      {u"long, right-to-left and empty texts"_s, StudioWindow::defaultSize, longTexts},
      {u"exporting"_s, StudioWindow::defaultSize, exporting},
      {u"an alert"_s, StudioWindow::defaultSize, alert},
  };
  Sheet sheet(3, QColor(0xb6, 0xb6, 0xbc));
  for (const Case& c : cases) {
    const auto window = makeWindow(c.size);
    c.bring(*window);
    settleCards();
    sheet.add(pictureOf(*window, 1), c.caption);
  }
  return sheet.image();
}

QImage dialogSheet(const QString& scratch) {
  const QDir home(scratch + u"/home"_s);
  for (const char* folder : {"Videos", "Holiday"}) home.mkpath(QString::fromLatin1(folder));
  for (const char* name : {"Videos/launch-day.mp4", "Videos/payday.mp4", "sunset.jpg", "harbour.png"}) {
    QFile file(home.filePath(QString::fromLatin1(name)));
    if (file.open(QIODevice::WriteOnly)) file.write(QByteArray(200000, 0));
  }
  qputenv("HOME", home.path().toLocal8Bit());

  Sheet sheet(3, QColor(0xb6, 0xb6, 0xbc));
  const auto window = makeWindow();
  const auto addTopLevel = [&](const char* kind, const QString& caption) {
    waitFor(400ms);
    for (QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->isVisible() && widget->inherits(kind)) sheet.add(pictureOf(*widget, 2), caption);
    }
  };
  sheet.startRow(u"Tooltips and menus"_s);
  QToolTip::showText({100, 100}, u"Upload photo"_s, window.get());
  addTopLevel("QTipLabel", u"tooltip"_s);
  QToolTip::hideText();
  for (const bool isUsed : {false, true}) {
    StudioField field(u"Sender"_s);
    field.setText(u"are you awake"_s);
    field.edit()->setFocus();
    if (isUsed) field.edit()->selectAll();
    const std::unique_ptr<QMenu> menu(field.edit()->createStandardContextMenu());
    menu->popup({100, 100});
    if (isUsed) menu->setActiveAction(menu->actions().at(4));
    addTopLevel("QMenu", isUsed ? u"menu, an entry chosen"_s : u"menu"_s);
  }

  sheet.startRow(u"Dialogs"_s);
  const std::unique_ptr<FilePanels> panels = makeFilePanels(window.get());
  const SavePanel save{.title = u"Export notification video"_s,
                       .proposedName = u"launch-day.mp4"_s,
                       .kinds = {u"MPEG-4 movie"_s},
                       .suffix = u"mp4"_s};
  panels->save(save, [](const auto&) {});
  addTopLevel("QFileDialog", u"save"_s);
  const auto answer = [&](QDialog::DialogCode code) {
    for (QDialog* dialog : window->findChildren<QDialog*>()) {
      if (dialog->isVisible()) dialog->done(code);
    }
    waitFor(100ms);
  };
  // The name is taken: the panel asks, and comes back.
  answer(QDialog::Accepted);
  addTopLevel("QMessageBox", u"replace"_s);
  answer(QDialog::Rejected);
  answer(QDialog::Rejected);
  panels->open(
      {.title = u"Choose a lock screen photo"_s, .kind = u"Photos"_s, .suffixes = {u"jpg"_s, u"png"_s}},
      [](const auto&) {});
  addTopLevel("QFileDialog", u"open"_s);
  return sheet.image();
}

}  // namespace brisklet
