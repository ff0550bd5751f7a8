#pragma once

#include "studio/editor/studio_view.h"
#include "studio/studio_window.h"

#include <QApplication>
#include <QObject>

namespace brisklet {

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
