#pragma once

#include <QWidget>
#include <optional>

namespace brisklet {

/// The line under the top bar. While an export runs it fills up with the part that is done, and is a progress
/// bar to assistive technology.
class Rule : public QWidget {
  Q_OBJECT

 public:
  static constexpr int thickness = 1;  // points

  explicit Rule(QWidget* parent = nullptr);

  /// 0 to 1, or nothing when no export runs.
  void setProgress(std::optional<double> progress);
  [[nodiscard]] bool showsProgress() const { return progress_.has_value(); }
  /// Whole percents; 0 when no export runs.
  [[nodiscard]] int percentage() const { return static_cast<int>(progress_.value_or(0) * 100); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<double> progress_;
};

}  // namespace brisklet
