#pragma once

#include <QVBoxLayout>
#include <QWidget>

namespace brisklet {

class StudioLabel;

/// A titled block of a column, with a line along its bottom edge.
class InspectorBlock : public QWidget {
  Q_OBJECT

 public:
  static constexpr int margin = 18, spacing = 12;  // points

  explicit InspectorBlock(const QString& title, QWidget* parent = nullptr);

  void setTitle(const QString& title);
  /// Where the block's content goes.
  [[nodiscard]] QVBoxLayout* content() const { return content_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  StudioLabel* title_;
  QVBoxLayout* content_;
};

}  // namespace brisklet
