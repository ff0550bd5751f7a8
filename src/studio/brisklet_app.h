#pragma once

#include <QApplication>
#include <QObject>

#include "studio/studio_view.h"
#include "studio/studio_window.h"

namespace brisklet {

/// Where Qt gives each event to its receiver. What fails there, for want of memory most likely, ends no more
/// than the answer to that event: a window says so, and the studio goes on with what the user has.
class StudioApplication : public QApplication {
 public:
  using QApplication::QApplication;
  bool notify(QObject* receiver, QEvent* event) override;

 private:
  bool speaksSoon_ = false;
};

/// The application: a group of independent editor windows. It ends with its last one.
class BriskletApp : public QObject {
  Q_OBJECT

 public:
  /// The windows' services, without panels; they outlive the application.
  BriskletApp(StudioView::Services services, StudioWindow::MakePanels makePanels);

  /// Fonts, colours and names of the program, in which dialogs and menus match the windows.
  static void setUp(QApplication& application);

  /// Opens a window with a blank sequence.
  StudioWindow* openWindow();
  /// Closes all windows; one that exports asks first.
  void quit();

 private:
  StudioView::Services services_;
  StudioWindow::MakePanels makePanels_;
};

}  // namespace brisklet
