#pragma once

#include "lockscreen/app_glyph.h"
#include "model/ping.h"
#include "studio/timeline_row.h"

#include <QCache>
#include <QList>
#include <QWidget>
#include <optional>

namespace brisklet {

class FocusMark;

/// The rows of the timeline in one widget, of which only those in view are painted: thousands are as quick
/// as a few. The arrow keys walk the rows, Space and Enter press the current one, Delete removes it. To
/// assistive technology it is a list whose rows are items, each with a button.
class TimelineList : public QWidget {
  Q_OBJECT

 public:
  static constexpr int rowSpacing = 8;  // points

  explicit TimelineList(QWidget* parent = nullptr);

  void setPings(const QList<Ping>& pings, const std::optional<QString>& selectedId);

  [[nodiscard]] qsizetype rowCount() const { return rows_.size(); }
  [[nodiscard]] const Ping& ping(qsizetype row) const { return rows_[row].ping; }
  [[nodiscard]] qsizetype rowOf(const QString& pingId) const;
  [[nodiscard]] QRect rowRect(qsizetype row) const;
  [[nodiscard]] QRect removeRect(qsizetype row) const;
  [[nodiscard]] bool isSelected(qsizetype row) const { return selectedId_ == rows_[row].ping.id; }
  /// The row that the keys act on; -1 without rows.
  [[nodiscard]] qsizetype currentRow() const;

  void setCurrentRow(qsizetype row);
  void pressRow(qsizetype row);
  void pressRemove(qsizetype row);
  /// Whether the keyboard's focus is marked on a row.
  [[nodiscard]] bool isMarked() const;

 Q_SIGNALS:
  void rowPressed(const Ping& ping);
  void removePressed(const QString& pingId);
  /// A part of the list is to be seen.
  void revealRequested(const QRect& rect);

 protected:
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  struct Row {
    Ping ping;
    int top = 0;
    int height = 0;
  };
  /// A row, or its remove button.
  struct Spot {
    qsizetype row = -1;
    bool isRemove = false;

    friend bool operator==(const Spot&, const Spot&) = default;
  };

  void setRows(const QList<Ping>& pings);
  void setSelected(const std::optional<QString>& id);
  [[nodiscard]] Spot spotAt(const QPoint& at) const;
  void setHovered(const Spot& spot);
  void setPressed(const Spot& spot);
  void updateRow(qsizetype row);
  void markCurrentRow();
  /// Measures the rows that have no height yet, and puts all in their places.
  void layOut();
  const TimelineRow& laidOut(const Row& row);

  QList<Row> rows_;
  int laidOutWidth_ = 0;
  std::optional<QString> selectedId_;
  QString currentId_;
  FocusMark* mark_;
  Spot hovered_, pressed_;
  /// By id.
  QCache<QString, TimelineRow> shownRows_;
  AppGlyphCache glyphs_;
};

}  // namespace brisklet
