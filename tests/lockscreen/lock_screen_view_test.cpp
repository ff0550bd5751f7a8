#include "lockscreen/lock_screen_view.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "pictures.h"

using namespace Qt::StringLiterals;

namespace brisklet {
namespace {

QImage wallpaperOf(const SequenceDocument& document) {
  WallpaperSource source;
  return source.filled(document, {captureWidth, captureHeight});
}

TEST(CaptureFrame, hasTheSameBytesEveryTime) {
  const SequenceDocument document = documentWith(5, u"one"_s);
  const QImage first = captured(document);
  EXPECT_EQ(first.format(), QImage::Format_RGB32);
  EXPECT_EQ(first.size(), QSize(1170, 2532));
  EXPECT_EQ(first, captured(document));

  // What was painted before leaves no trace.
  LockScreenCache cache;
  for (const double time : {2500.0, 0.0, 9000.0, 500.0, SequencePlayer::finishedMs}) {
    SequencePlayer player(document);
    player.setElapsedMs(time);
    const QImage frame = captureFrame({document, player, CaptureMode::Capture}, cache);
    EXPECT_EQ(frame, captured(document, time)) << time;
  }
}

TEST(CaptureFrame, isTheSameImageUntilSomethingChanges) {
  SequenceDocument document = documentWith(3);
  SequencePlayer player(document);
  LockScreenCache cache;
  player.setElapsedMs(1000);
  const auto keyAt = [&](double time) {
    player.setElapsedMs(time);
    return captureFrame({document, player, CaptureMode::Capture}, cache).cacheKey();
  };
  const qint64 key = keyAt(1000);
  EXPECT_EQ(keyAt(1033), key);
  EXPECT_EQ(keyAt(1999.9), key);
  EXPECT_NE(keyAt(2000), key);
  const qint64 later = keyAt(2000);
  document.timeLabel = u"9:42"_s;
  EXPECT_NE(keyAt(2000), later);
}

TEST(CaptureFrame, cardsStandOnTheWallpaperAndNowhereElse) {
  const SequenceDocument document = documentWith(2);
  const QImage empty = captured(document, -1), two = captured(document);
  const LockScreenLayout layout = lockScreenLayout(document, 2);
  const int reach = 30 * 3, top = int(layout.cards[0].top() * 3), bottom = int(layout.cards[1].bottom() * 3);
  EXPECT_EQ(two.copy(0, 0, 1170, top - reach), empty.copy(0, 0, 1170, top - reach));
  const int below = bottom + reach + 30;
  EXPECT_EQ(two.copy(0, below, 1170, 2532 - below), empty.copy(0, below, 1170, 2532 - below));
  for (const QRectF& card : layout.cards)
    EXPECT_GT(greatestDifference(two, empty, (QRectF(card.topLeft() * 3, card.size() * 3)).toRect()), 60);

  // Without cards their area is bare, and so is what lies beside the quick actions.
  const QImage wallpaper = wallpaperOf(document);
  EXPECT_EQ(empty.copy(0, 1000, 1170, 1150), wallpaper.copy(0, 1000, 1170, 1150));
  EXPECT_EQ(empty.pixel(585, 2350), wallpaper.pixel(585, 2350));
  EXPECT_EQ(empty.pixel(0, 0), wallpaper.pixel(0, 0)) << "square corners";
}

TEST(CaptureFrame, showsTheNewestPingsOnTop) {
  SequenceDocument document = documentWith(7);
  document.maxVisible = 1;
  SequenceDocument newest = document;
  newest.notifications = {document.notifications.last()};
  EXPECT_EQ(captured(document), captured(newest));
  document.maxVisible = -5;
  EXPECT_EQ(captured(document), captured(newest));
}

TEST(CaptureFrame, cardsThatDoNotFitPassUnderTheQuickActions) {
  SequenceDocument document = documentWith(40);
  document.maxVisible = std::numeric_limits<qint64>::max();
  const QImage many = captured(document);
  const QImage none = captured(document, -1);
  const QRect orb = QRectF(50 * 3, 772 * 3, 42 * 3, 40 * 3).toRect();
  EXPECT_LE(greatestDifference(many, none, orb), 12);
  EXPECT_GT(greatestDifference(many, none, QRect(500, 2330, 100, 100)), 20);
}

TEST(CaptureFrame, theTimeStandsInTheMiddleByItsInk) {
  for (const QString& time : {u"9:41"_s, u"11:11"_s, u"7:07"_s}) {
    SequenceDocument document = documentWith(0, u"two"_s);
    document.timeLabel = time;
    const QImage frame = captured(document);
    const QRectF place = lockScreenLayout(document, 0).time;
    int left = frame.width(), right = 0;
    for (int y = int(place.top() * 3); y < int(place.bottom() * 3); ++y) {
      for (int x = 0; x < frame.width(); ++x) {
        if (qGreen(frame.pixel(x, y)) < 215) continue;
        left = std::min(left, x);
        right = std::max(right, x);
      }
    }
    EXPECT_NEAR((left + right + 1) / 2.0, 585, 1.5) << time.toStdString();
  }
}

TEST(CaptureFrame, takesAnyText) {
  SequenceDocument document = documentWith(0);
  const QString lone(QChar(0xD83D)), nul(1, QChar(0)), huge(1 << 20, u'm');
  const QString emoji = u"👩‍👩‍👧‍👦🏳️‍🌈🇩🇪"_s;
  const QString mixed = u"שלום abc مرحبا 123 สวัสดี नमस्ते 日本語 e\u0301\u0301\u0301\u0301"_s;
  for (const QString& text : {lone, nul, huge, emoji, mixed, QString(), u"\n\n\r\n"_s, u"\u202e\u2066x"_s}) {
    Ping ping = pingOf(u"custom"_s, text, text);
    ping.appLabel = ping.icon = ping.color = text;
    document.notifications.append(ping);
    ping.appId = text;
    document.notifications.append(ping);
    document.dateLabel = document.timeLabel = document.wallpaper = document.wallpaperUrl = text;
    document.maxVisible = 2;
    EXPECT_EQ(captured(document).size(), QSize(1170, 2532));
    document.wallpaper = u"custom"_s;
    EXPECT_EQ(captured(document).size(), QSize(1170, 2532));
  }
}

TEST(LockScreenView, paintsAtThePaintersPlaceAndScale) {
  const SequenceDocument document = documentWith(2);
  SequencePlayer player(document);
  LockScreenCache cache;
  const LockScreenView view{document, player, CaptureMode::Capture};
  QImage canvas(1200, 2600, QImage::Format_RGB32);
  canvas.fill(Qt::red);
  {
    QPainter painter(&canvas);
    painter.translate(10, 20);
    painter.scale(3, 3);
    view.paint(painter, cache);
  }
  EXPECT_EQ(canvas.copy(10, 20, 1170, 2532), captured(document));
  EXPECT_EQ(canvas.pixel(9, 19), qRgb(255, 0, 0));
  EXPECT_EQ(canvas.pixel(1180, 2552), qRgb(255, 0, 0));

  // On a screen of two pixels a point the picture has all of them.
  QImage screen(780, 1688, QImage::Format_ARGB32_Premultiplied);
  screen.fill(Qt::transparent);
  screen.setDevicePixelRatio(2);
  {
    QPainter painter(&screen);
    view.paint(painter, cache);
  }
  screen.setDevicePixelRatio(1);
  EXPECT_EQ(screen.convertToFormat(QImage::Format_RGB32), view.picture(cache, view.restingCards(), 2));
}

TEST(LockScreenView, isRoundedLiveAndFollowsTheAnimation) {
  const SequenceDocument document = documentWith(3);
  SequencePlayer player(document);
  LockScreenCache cache;
  const LockScreenView view{document, player, CaptureMode::Live};
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
