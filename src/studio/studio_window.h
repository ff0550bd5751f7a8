#pragma once

#include "desktop/file_panels.h"
#include "studio/editor/studio_view.h"

#include <QMimeData>
#include <QWidget>
#include <functional>
#include <memory>

namespace brisklet {

class Alert;
class ColumnArea;
class Inspector;
class Rule;
class Stage;
class Timeline;
class TopBar;
class WindowFrame;

/// An editor's window: it shows what the editor holds and hands the user's wishes to it. All of the wiring
/// between widgets and editor is here.
class StudioWindow : public QWidget {
  Q_OBJECT

 public:
  static constexpr QSize leastSize{1180, 780}, defaultSize{1320, 860};  // points

  using MakePanels = std::function<std::unique_ptr<FilePanels>(QWidget* window)>;

  /// The services without their panels, which belong to the window.
  StudioWindow(StudioView::Services services, const MakePanels& makePanels);
  ~StudioWindow() override;

  [[nodiscard]] StudioView& view() { return *view_; }
  /// The size of a new window on a screen with this much room.
  [[nodiscard]] static QSize openingSize(const QSize& room);

 Q_SIGNALS:
  void newWindowRequested();
  void quitRequested();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;

 private:
  void connectTopBar();
  void connectInspector();
  void connectTimeline();
  void connectStage();
  void connectView();
  void addShortcuts();
  void showState();
  void showTopBar();
  void showError();
  void askToStop();
  /// Adds a ping, and has the text of the next one typed.
  void addPing();
  /// The ping of the row in focus, or the selected one where no row has it; empty when there is none.
  [[nodiscard]] QString rowInFocus() const;
  void copyPing() const;
  void paste();
  /// Uses the photo that is dropped or pasted, if it is one.
  bool takePhoto(const QMimeData& carried);
  [[nodiscard]] bool isPhoto(const QMimeData& carried) const;

  // The editor is destroyed before its panels.
  std::unique_ptr<FilePanels> panels_;
  std::unique_ptr<StudioView> view_;
  TopBar* topBar_;
  Rule* rule_;
  Inspector* inspector_;
  ColumnArea* inspectorArea_;
  Stage* stage_;
  Timeline* timeline_;
  ColumnArea* timelineArea_;
  Alert* alert_;
  WindowFrame* frame_;
  bool asksToStop_ = false;
  bool closesAfterExport_ = false;
};

}  // namespace brisklet
