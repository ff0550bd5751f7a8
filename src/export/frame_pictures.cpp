#include "export/frame_pictures.h"

#include <algorithm>
#include <limits>
#include <new>

namespace brisklet {

FramePictures::FramePictures(const SequenceDocument& document, const MovieStyle& style,
                             LockScreenCache& cache)
    : style_(style),
      player_(document),
      view_{document, player_, style.inMotion ? Rendering::MovieInMotion : Rendering::Movie},
      cache_(cache) {
  cache_.expectOtherPhoto();
  for (const Ping& ping : document.notifications) landingsMs_.push_back(ping.delayMs);
  std::sort(landingsMs_.begin(), landingsMs_.end());
  landingsMs_.erase(std::unique(landingsMs_.begin(), landingsMs_.end()), landingsMs_.end());
}

QSize FramePictures::size(const MovieStyle& style) {
  return style.page.isEmpty() ? QSize(captureWidth, captureHeight) : style.page;
}

double FramePictures::nextLandingMs() const {
  return landed_ < landingsMs_.size() ? landingsMs_[landed_] : std::numeric_limits<double>::infinity();
}

bool FramePictures::advance(double timeMs) {
  const auto show = [this](double momentMs) {
    player_.stop();
    player_.setElapsedMs(momentMs);
    return view_.visiblePings();
  };
  bool changes = lockScreen_.isNull();
  if (changes) animation_.reset(show(0));
  // Cards change only at a moment at which a ping lands. What has landed at the beginning stands there.
  while (landed_ < landingsMs_.size() && landingsMs_[landed_] <= timeMs) {
    const double landingMs = landingsMs_[landed_++];
    if (landingMs <= 0) continue;
    changes = true;
    if (style_.inMotion) animation_.update(show(landingMs), landingMs);
  }
  if (changes && !style_.inMotion) animation_.reset(show(timeMs));
  return changes;
}

const QImage& FramePictures::at(double timeMs) {
  if (!advance(timeMs) && stands_) return picture_;
  stands_ = animation_.settled(timeMs);
  const double scale = style_.page.isEmpty() ? captureScale : PageLayout(style_.page).pixelsPerPoint;
  QImage lockScreen = view_.picture(cache_, animation_.cards(timeMs), scale);
  // A picture that memory did not suffice for is null, and what is painted on it is lost without a word.
  if (lockScreen.isNull()) throw std::bad_alloc();
  if (lockScreen.cacheKey() == lockScreen_.cacheKey()) return picture_;
  lockScreen_ = std::move(lockScreen);
  if (!style_.page.isEmpty() && !page_) page_.emplace(style_.page, cache_.wallpaper());
  picture_ = page_ ? page_->with(lockScreen_) : lockScreen_;
  return picture_;
}

}  // namespace brisklet
