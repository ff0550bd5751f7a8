#pragma once

#include "model/ping.h"

#include <QList>
#include <QWidget>
#include <optional>

namespace brisklet {

class InspectorBlock;
class StudioText;
class TimelineList;

/// The list of the sequence's pings under what it comes to.
class Timeline : public QWidget {
  Q_OBJECT

 public:
  explicit Timeline(QWidget* parent = nullptr);

  void setState(const QString& summary, const QList<Ping>& pings, const std::optional<QString>& selectedId);
  [[nodiscard]] TimelineList* list() const { return list_; }

 Q_SIGNALS:
  void pingPressed(const Ping& ping);
  void removePressed(const QString& pingId);
  /// A part of the timeline is to be seen.
  void revealRequested(const QRect& rect);

 private:
  InspectorBlock* block_;
  QWidget* emptyText_;
  TimelineList* list_;
};

}  // namespace brisklet
