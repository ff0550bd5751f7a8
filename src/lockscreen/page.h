#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <array>

namespace brisklet {

/// Where the phone lies on a page of this size: in its middle, 92 % of its height or 86 % of its width, the
/// smaller of the two.
struct PageLayout {
  explicit PageLayout(const QSize& page);

  double pixelsPerPoint;
  QRect phone;
};

/// The page on which a phone with rounded corners lies, before its own wallpaper, blurred and darker.
class Page {
 public:
  /// `wallpaper` is the phone's, at any size.
  Page(const QSize& size, const QImage& wallpaper);

  [[nodiscard]] const PageLayout& layout() const { return layout_; }

  /// The page with this lock screen, which has the size of the layout's phone and square corners; both RGB32.
  [[nodiscard]] QImage with(const QImage& lockScreen) const;

 private:
  struct Corner {
    QPoint place;
    QImage picture;  // what of the page covers the lock screen there
  };

  PageLayout layout_;
  QImage empty_;
  std::array<Corner, 4> corners_;
};

}  // namespace brisklet
