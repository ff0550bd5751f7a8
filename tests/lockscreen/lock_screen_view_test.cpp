#include "lockscreen/lock_screen_view.h"

#include "pictures.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

TEST(CaptureFrame, hasTheSameBytesEveryTime) {
  const SequenceDocument document = documentWith(5, u"one"_s);
  EXPECT_EQ(captured(document).format(), QImage::Format_RGB32);
  EXPECT_EQ(captured(document).size(), QSize(1170, 2532));
  // What was painted before leaves no trace.
  LockScreenCache cache;
  SequencePlayer player(document);
  for (const double time : {2500.0, 0.0, 9000.0, 500.0, SequencePlayer::finishedMs}) {
    player.setElapsedMs(time);
    EXPECT_EQ(captureFrame({document, player, Rendering::Movie}, cache), captured(document, time)) << time;
  }
}

TEST(CaptureFrame, isTheSameImageUntilSomethingChanges) {
  SequenceDocument document = documentWith(3);
  SequencePlayer player(document);
  LockScreenCache cache;
  const auto keyAt = [&](double time) {
    player.setElapsedMs(time);
    return captureFrame({document, player, Rendering::Movie}, cache).cacheKey();
  };
  const qint64 key = keyAt(1000);
  EXPECT_EQ(keyAt(1999.9), key);
  const qint64 later = keyAt(2000);
  EXPECT_NE(later, key);
  document.timeLabel = u"9:42"_s;
  EXPECT_NE(keyAt(2000), later);
  document.wallpaper = u"three"_s;
  (void)keyAt(2000);
  EXPECT_EQ(captureFrame({document, player, Rendering::Movie}, cache), captured(document, 2000));
}

TEST(CaptureFrame, cardsThatDoNotFitPassUnderTheQuickActions) {
  SequenceDocument document = documentWith(40);
  document.maxVisible = std::numeric_limits<qint64>::max();
  const QImage many = captured(document), none = captured(document, -1);
  // The torch is there, and what passes beneath shines through it without its outlines.
  EXPECT_EQ(many.pixelColor(213, 2360).green(), none.pixelColor(213, 2360).green());
  EXPECT_GT(greatestDifference(many, none, {160, 2340, 20, 70}), 6);
  for (int y = 2320; y < 2430; ++y)
    EXPECT_NEAR(qGreen(many.pixel(165, y)), qGreen(many.pixel(165, y - 1)), 5) << y;
  EXPECT_GT(greatestDifference(many, none, {500, 2330, 100, 100}), 20);
}

TEST(CaptureFrame, theTimeStandsInTheMiddleByItsInk) {
  for (const QString& time : {u"9:41"_s, u"11:11"_s, u"7:07"_s}) {
    SequenceDocument document = documentWith(0);
    document.timeLabel = time;
    const QImage frame = captured(document);
    const QRectF place = lockScreenLayout(document, 0).time;
    const QRect ink = inkBox(frame, QRect(0, int(place.top() * 3), 1170, int(place.height() * 3)),
                             [](const QColor& color) { return color.green() >= 215; });
    EXPECT_NEAR((ink.left() + ink.right() + 1) / 2.0, 585, 1.5) << time.toStdString();
  }
}

TEST(LockScreenView, paintsAtThePaintersPlaceAndScale) {
  const SequenceDocument document = documentWith(2);
  SequencePlayer player(document);
  LockScreenCache cache;
  const LockScreenView view{document, player, Rendering::Movie};
  QImage canvas(1200, 2600, QImage::Format_RGB32);
  canvas.fill(Qt::red);
  QPainter painter(&canvas);
  painter.translate(10, 20);
  painter.scale(3, 3);
  view.paint(painter, cache, view.restingCards());
  painter.end();
  EXPECT_EQ(canvas.copy(10, 20, 1170, 2532), captured(document));
}

TEST(LockScreenView, isRoundedLiveAndFollowsTheAnimation) {
  const SequenceDocument document = documentWith(3);
  SequencePlayer player(document);
  LockScreenCache cache;
  const LockScreenView view{document, player, Rendering::Live};
  const QImage resting = view.picture(cache, view.restingCards(), 1.72);
  EXPECT_EQ(resting.size(), QSize(671, 1452));
  for (const QPoint& corner : {QPoint(0, 0), QPoint(670, 0), QPoint(0, 1451), QPoint(670, 1451)})
    EXPECT_EQ(qAlpha(resting.pixel(corner)), 0);
  EXPECT_EQ(qAlpha(resting.pixel(335, 0)), 255);

  CardStackAnimation animation;
  animation.reset(view.visiblePings().mid(1));
  animation.update(view.visiblePings(), 0);
  EXPECT_NE(view.picture(cache, animation.cards(150), 1.72), resting);
  EXPECT_EQ(view.picture(cache, animation.cards(4000), 1.72), resting);
}

}  // namespace
}  // namespace brisklet
