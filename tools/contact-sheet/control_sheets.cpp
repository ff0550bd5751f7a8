#include <QApplication>
#include <QEventLoop>
#include <QPainter>
#include <QTimer>
#include <functional>
#include <memory>

#include "backdrops.h"
#include "model/catalogue.h"
#include "platform/file_panels.h"
#include "sheet.h"
#include "sheets.h"
#include "studio/add_ping_button.h"
#include "studio/alert.h"
#include "studio/app_chip.h"
#include "studio/custom_app_chip.h"
#include "studio/custom_wallpaper_chip.h"
#include "studio/palette.h"
#include "studio/rule.h"
#include "studio/studio_button.h"
#include "studio/studio_field.h"
#include "studio/studio_label.h"
#include "studio/studio_window.h"
#include "studio/timeline_list.h"
#include "studio/top_bar.h"
#include "studio/type_chip.h"
#include "studio/wallpaper_chip.h"
#include "studio/window_button.h"

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

enum class State { Rest, Hovered, Pressed, Focused, Selected, SelectedFocused, Disabled };

QString nameOf(State state) {
  switch (state) {
    case State::Rest:
      return u"rest"_s;
    case State::Hovered:
      return u"hovered"_s;
    case State::Pressed:
      return u"pressed"_s;
    case State::Focused:
      return u"focused"_s;
    case State::Selected:
      return u"selected"_s;
    case State::SelectedFocused:
      return u"selected, focused"_s;
    case State::Disabled:
      return u"disabled"_s;
  }
  return {};
}

void settle() {
  for (int i = 0; i < 3; ++i) QApplication::processEvents();
}

/// Until cards that have begun to move stand still.
void settleCards() {
  QEventLoop loop;
  QTimer::singleShot(1500, &loop, &QEventLoop::quit);
  loop.exec();
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

void put(QAbstractButton* button, State state) {
  if (state == State::Selected || state == State::SelectedFocused) {
    if (auto* chip = qobject_cast<Chip*>(button)) chip->setSelected(true);
  }
  // Where a pointer happens to be does not matter.
  button->setAttribute(Qt::WA_UnderMouse, state == State::Hovered || state == State::Pressed);
  if (state == State::Pressed) button->setDown(true);
  if (state == State::Focused || state == State::SelectedFocused) button->setFocus(Qt::TabFocusReason);
  if (state == State::Disabled) button->setEnabled(false);
}

using MakeButton = std::function<QAbstractButton*()>;

void addButtons(Sheet& sheet, const QString& heading, const QColor& ground, const QSize& size,
                const QList<State>& states, const MakeButton& make) {
  sheet.startRow(heading);
  for (const State state : states) {
    QAbstractButton* button = make();
    Host host(button, size.isValid() ? size : button->sizeHint(), ground);
    put(button, state);
    sheet.add(host.picture(2), nameOf(state));
  }
}

void addFields(Sheet& sheet) {
  sheet.startRow(u"StudioField"_s);
  struct Case {
    QString caption, text;
    bool focused = false, selectsAll = false;
  };
  for (const Case& c :
       {Case{u"text"_s, u"Mom gjpqy"_s}, Case{u"empty"_s, {}}, Case{u"focused"_s, u"Mom"_s, true},
        Case{u"empty, focused"_s, {}, true}, Case{u"all selected"_s, u"are you awake"_s, true, true},
        Case{u"long"_s, u"A text that is far too long for the field, and goes on"_s},
        Case{u"right to left"_s, u"رسالة طويلة جدا"_s},
        Case{u"scripts"_s, u"ÅÉ 渋谷 ที่นี่ 🥹🔥 हिन्दी"_s}}) {
    auto* field = new StudioField(u"Sender"_s);
    Host host(field, {252, field->sizeHint().height()}, Studio::paper);
    field->setText(c.text);
    for (QWidget* part : field->findChildren<QWidget*>()) part->setAttribute(Qt::WA_UnderMouse, false);
    if (c.focused) field->edit()->setFocus(Qt::TabFocusReason);
    if (c.selectsAll) field->edit()->selectAll();
    sheet.add(host.picture(2), c.caption);
  }
}

class NoPanels : public FilePanels {
 public:
  void save(const SavePanel&, Done done) override { done(std::nullopt); }
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
  const QList<State> usable = {State::Rest, State::Hovered, State::Pressed, State::Focused};
  const QList<State> plain = usable + QList<State>{State::Disabled};
  const QList<State> chips = {State::Rest,    State::Hovered,  State::Pressed,
                              State::Focused, State::Selected, State::SelectedFocused};
  Sheet sheet(8, QColor(0xd8, 0xd8, 0xdc));
  const auto button = [](const QString& title, const QString& symbol, ButtonLook look) {
    return [=] { return new StudioButton(title, symbol, look); };
  };
  addButtons(sheet, u"StudioButton"_s, Studio::white, {}, plain, button(u"New"_s, {}, ButtonLook::Flat));
  addButtons(sheet, u"with a symbol"_s, Studio::white, {}, plain,
             button(u"Play"_s, u"play.fill"_s, ButtonLook::Flat));
  addButtons(sheet, u"solid"_s, Studio::white, {}, plain,
             button(u"Export"_s, u"square.and.arrow.down"_s, ButtonLook::Solid));
  for (const char* symbol : {"window.minimise", "window.zoom", "window.close"}) {
    addButtons(sheet, u"WindowButton"_s, Studio::white, {}, usable,
               [symbol] { return new WindowButton(QString::fromLatin1(symbol), {}); });
  }
  addButtons(sheet, u"AddPingButton"_s, Studio::paper, {252, 34}, usable, [] { return new AddPingButton; });
  addButtons(sheet, u"TypeChip"_s, Studio::paper, {122, 28}, chips,
             [] { return new TypeChip(PingType::types(u"instagram"_s).at(1)); });
  addButtons(sheet, u"WallpaperChip"_s, Studio::paper, {44, 44}, chips,
             [] { return new WallpaperChip(u"one"_s, {}); });
  addButtons(sheet, u"CustomWallpaperChip"_s, Studio::paper, {44, 44}, chips,
             [] { return new CustomWallpaperChip; });
  addButtons(sheet, u"AppChip"_s, Studio::paper, {36, 36}, chips,
             [] { return new AppChip(AppPreset::named(u"instagram"_s)); });
  addButtons(sheet, u"CustomAppChip"_s, Studio::paper, {36, 36}, chips, [] { return new CustomAppChip; });
  addFields(sheet);

  sheet.startRow(u"TimelineRow"_s);
  struct Case {
    QString caption;
    TimelineRow::Look look;
    QString title, message;
  };
  for (const Case& c :
       {Case{u"rest"_s, {}, u"@maya"_s, u"commented: this is so real"_s},
        Case{u"hovered"_s, {.isHovered = true}, u"@maya"_s, u"commented: this is so real"_s},
        Case{u"pressed"_s,
             {.isHovered = true, .isPressed = true},
             u"@maya"_s,
             u"commented: this is so real"_s},
        Case{u"selected"_s, {.isSelected = true}, u"@maya"_s, u"commented: this is so real"_s},
        Case{u"remove hovered"_s, {.isHovered = true, .isRemoveHovered = true}, u"@maya"_s, u"one line"_s},
        Case{u"remove pressed"_s, {.isRemoveHovered = true, .isRemovePressed = true}, u"@maya"_s, u"one"_s},
        Case{u"long"_s,
             {},
             u"Northside Ceramics Studio & Kiln Co-operative"_s,
             u"sent you $1,840 for 🏺 October, thank you for every single late night at the wheel"_s},
        Case{u"right to left"_s, {}, u"محمد العربي"_s, u"رصيدك الآن ١٬٨٤٠ دولارًا، شكرًا جزيلاً لكم"_s}}) {
    const TimelineRow row(pingOf(u"instagram"_s, c.title, c.message, 2500), 252);
    QImage image(QSize(268, row.height() + 16) * 2, QImage::Format_RGB32);
    image.fill(Studio::paper);
    QPainter painter(&image);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(2, 2);
    painter.translate(8, 8);
    AppGlyphCache glyphs;
    row.paint(painter, c.look, glyphs);
    sheet.add(image, c.caption);
  }
  return sheet.image();
}

QImage windowPicture(const QString&) {
  const auto window = makeWindow();
  StudioView& view = window->view();
  view.setTitle(u"Launch day"_s);
  addPings(view, 5);
  view.selectPing(view.document().notifications.at(1));
  settleCards();
  return pictureOf(*window, 1);
}

QImage studioSheet(const QString&) {
  Sheet sheet(3, QColor(0xb6, 0xb6, 0xbc));
  {
    const auto window = makeWindow();
    sheet.add(pictureOf(*window, 1), u"a new document"_s);
  }
  {
    const auto window = makeWindow();
    addPings(window->view(), 5);
    settle();
    window->view().selectPing(window->view().document().notifications.at(2));
    settleCards();
    sheet.add(pictureOf(*window, 1), u"a ping selected"_s);
  }
  {
    const auto window = makeWindow(StudioWindow::leastSize);
    addPings(window->view(), 200);
    window->view().pickCustomApp();
    window->view().setCustomAppLabel(u"Budget"_s);
    settleCards();
    sheet.add(pictureOf(*window, 1), u"200 pings, a custom app, the least size"_s);
  }
  {
    const auto window = makeWindow();
    StudioView& view = window->view();
    view.setTitle(u"A title that is far too long for the room that it has in the bar"_s);
    addPings(view, 4);
    const QList<Ping> pings = view.document().notifications;
    const QStringList titles = {
        u"Northside Ceramics Studio & Kiln Co-operative"_s, u"محمد العربي"_s, u"渋谷スニーカー"_s, {}};
    const QStringList texts = {
        u"sent you $1,840 for 🏺 October, thank you for every single late night at the wheel"_s,
        u"رصيدك الآن ١٬٨٤٠ دولارًا، شكرًا جزيلاً لكم جميعا على كل شيء"_s,
        u"写真に「いいね！」しました。👟"_s,
        {}};
    for (int i = 0; i < 4; ++i) {
      view.selectPing(pings.at(i));
      view.setSenderText(titles.at(i));
      view.setMessageText(texts.at(i));
    }
    view.pickWallpaper(u"three"_s);
    settleCards();
    sheet.add(pictureOf(*window, 1), u"long, right-to-left and empty texts"_s);
  }
  {
    const auto window = makeWindow();
    addPings(window->view(), 3);
    window->view().pickWallpaper(u"two"_s);
    settle();
    window->findChild<TopBar*>()->setState(
        {.title = {}, .summary = window->view().summary(), .canPlay = true, .exportProgress = 0.42});
    window->findChild<Rule*>()->setProgress(0.42);
    settleCards();
    sheet.add(pictureOf(*window, 1), u"exporting"_s);
  }
  {
    const auto window = makeWindow();
    addPings(window->view(), 3);
    window->view().pickWallpaper(u"four"_s);
    settle();
    window->findChild<Alert*>()->open(
        {.title = u"Something went wrong"_s,
         .message = u"The movie could not be written. No space left on device."_s,
         .confirm = {},
         .cancel = u"OK"_s});
    settleCards();
    sheet.add(pictureOf(*window, 1), u"an alert"_s);
  }
  return sheet.image();
}

}  // namespace brisklet
