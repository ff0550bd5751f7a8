#include "studio/brisklet_app.h"

#include "drawing/fonts.h"
#include "studio/controls/palette.h"
#include "studio/controls/studio_style.h"

#include <QIcon>
#include <QPalette>
#include <QScreen>
#include <QSettings>
#include <QToolTip>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr int cascade = 28;  // pt by which a further window stands off from the one before

QPalette studioPalette() {
  QPalette palette(Studio::paper);
  palette.setColor(QPalette::WindowText, Studio::ink);
  palette.setColor(QPalette::Base, Studio::white);
  palette.setColor(QPalette::AlternateBase, Studio::paper);
  palette.setColor(QPalette::Text, Studio::ink);
  palette.setColor(QPalette::Button, Studio::paper);
  palette.setColor(QPalette::ButtonText, Studio::ink);
  palette.setColor(QPalette::Highlight, Studio::textSelection);
  palette.setColor(QPalette::HighlightedText, Studio::ink);
  palette.setColor(QPalette::PlaceholderText, Studio::placeholder);
  palette.setColor(QPalette::ToolTipBase, Studio::white);
  palette.setColor(QPalette::ToolTipText, Studio::ink);
  palette.setColor(QPalette::Link, Studio::focus);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
    palette.setColor(QPalette::Disabled, role, Studio::placeholder);
  return palette;
}

}  // namespace

BriskletApp::BriskletApp(StudioView::Services services, StudioWindow::MakePanels makePanels)
    : services_(std::move(services)), makePanels_(std::move(makePanels)) {}

void BriskletApp::setUp(QApplication& application) {
  QApplication::setApplicationName(u"brisklet"_s);
  QApplication::setDesktopFileName(u"brisklet"_s);
  // Qt's file dialog would read and keep a history in the user's settings. There are none: nothing is kept
  // from run to run, and nothing is left behind.
  QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, u"/dev/null"_s);
  QApplication::setStyle(new StudioStyle);
  QApplication::setPalette(studioPalette());
  application.setFont(systemFont(13, FontWeight::Regular));
  QToolTip::setFont(systemFont(12, FontWeight::Regular));
  QToolTip::setPalette(studioPalette());
  QIcon icon;
  for (const int size : {16, 24, 32, 48, 64, 128, 256})
    icon.addFile(u":/icons/%1x%1/brisklet.png"_s.arg(size));
  QApplication::setWindowIcon(icon);
}

StudioWindow* BriskletApp::openWindow() {
  auto* window = new StudioWindow(services_, makePanels_);
  window->setAttribute(Qt::WA_DeleteOnClose);
  connect(window, &StudioWindow::newWindowRequested, this, &BriskletApp::openWindow);
  connect(window, &StudioWindow::quitRequested, this, &BriskletApp::quit);
  // Without a window manager nobody else passes the keyboard on.
  connect(window, &QObject::destroyed, this, [] {
    const QWidgetList others = QApplication::topLevelWidgets();
    for (QWidget* other : others) {
      if (!qobject_cast<StudioWindow*>(other) || !other->isVisible()) continue;
      if (!QApplication::activeWindow()) other->activateWindow();
      break;
    }
  });

  const QWidget* former = QApplication::activeWindow();
  const QRect room = (former ? former->screen() : window->screen())->availableGeometry();
  QRect place(QPoint(), StudioWindow::openingSize(room.size()));
  place.moveCenter(room.center());
  if (former) place.moveTopLeft(former->geometry().topLeft() + QPoint(cascade, cascade));
  // The top bar stays in reach even where the window does not fit.
  place.moveRight(std::min(place.right(), room.right()));
  place.moveBottom(std::min(place.bottom(), room.bottom()));
  place.moveLeft(std::max(place.left(), room.left()));
  place.moveTop(std::max(place.top(), room.top()));
  window->setGeometry(place);
  window->show();
  window->activateWindow();
  return window;
}

void BriskletApp::quit() {
  QApplication::closeAllWindows();
}

}  // namespace brisklet
