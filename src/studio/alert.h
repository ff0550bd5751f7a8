#pragma once

#include "drawing/text_line.h"
#include "studio/controls/clamped_text.h"

#include <QImage>
#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <utility>

namespace brisklet {

class StudioButton;

/// A message over the window that must be answered before the window takes other input. It is drawn within
/// the window and the event loop goes on as ever.
class Alert : public QWidget {
  Q_OBJECT

 public:
  struct Content {
    QString title;
    QString message;
    /// The button that does what the title asks; empty when the alert only tells.
    QString confirm;
    /// The button that leaves everything as it is, which Escape and Enter press.
    QString cancel;
    /// What else it tells, line by line, each under a heading at the left or without one. It makes the alert
    /// wider.
    QList<std::pair<QString, QString>> lines = {};

    friend bool operator==(const Content&, const Content&) = default;
  };

  /// Over all of its parent.
  explicit Alert(QWidget* parent);

  void open(const Content& content);
  [[nodiscard]] bool isOpen() const { return !content_.cancel.isEmpty(); }
  /// Closes it without an answer. The focus goes back to who had it.
  void dismiss();
  /// The card in the middle.
  [[nodiscard]] QRect cardRect() const;

 Q_SIGNALS:
  void confirmed();
  void cancelled();
  /// Dragged above the window's content: from where and to where, on the screen.
  void dragged(const QPoint& from, const QPoint& to);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void place();
  void layOut();

  /// Empty while the alert is closed.
  Content content_;
  TextLine title_;
  /// The message and the lines, from the top of what is under the title.
  struct Part {
    TextLine heading;
    ClampedText text;
    int left = 0, top = 0;
  };
  QList<Part> parts_;
  int cardWidth_ = 0, partsHeight_ = 0;
  StudioButton* confirm_;
  StudioButton* cancel_;
  QPointer<QWidget> formerFocus_;
  QPoint heldAt_;
};

}  // namespace brisklet
