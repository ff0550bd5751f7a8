#pragma once

#include <QScrollArea>
#include <QVariantAnimation>
#include <optional>

namespace brisklet {

/// A column beside the stage: content on paper that scrolls up and down. Wheel steps glide.
class ColumnArea : public QScrollArea {
  Q_OBJECT

 public:
  static constexpr int columnWidth = 288;  // points

  /// Takes the content over.
  explicit ColumnArea(QWidget* content, QWidget* parent = nullptr);

  /// Scrolls as little as needed to show a part of the content, once the content is large enough to have it.
  void reveal(const QRect& part);

 protected:
  void wheelEvent(QWheelEvent* event) override;

 private:
  void glideTo(int value);

  QVariantAnimation glide_;
  std::optional<QRect> awaited_;
};

}  // namespace brisklet
