#include "backdrops.h"
#include "drawing/continuous_corners.h"
#include "lockscreen/lock_glass.h"
#include "lockscreen/lock_screen_view.h"
#include "model/catalogue.h"
#include "sheet.h"
#include "sheets.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

QImage lockScreen(const SequenceDocument& document, Rendering rendering, double scale) {
  const SequencePlayer player(document);
  const LockScreenView view{document, player, rendering};
  LockScreenCache cache;
  return view.picture(cache, view.restingCards(), scale);
}

/// The part of a lock screen, in points.
QImage part(const QImage& picture, const QRectF& points, double scale) {
  return picture.copy(QRectF(points.topLeft() * scale, points.size() * scale).toRect());
}

/// Relative luminance as the web's accessibility guidelines (WCAG 2) define it.
double luminance(double red, double green, double blue) {
  const auto linear = [](double v) { return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4); };
  return 0.2126 * linear(red) + 0.7152 * linear(green) + 0.0722 * linear(blue);
}

/// The contrast of white text of this opacity with what it stands on.
double textContrast(double red, double green, double blue, double opacity) {
  const auto over = [opacity](double v) { return opacity + (1 - opacity) * v; };
  return (luminance(over(red), over(green), over(blue)) + 0.05) / (luminance(red, green, blue) + 0.05);
}

/// The least contrast of white text of this opacity anywhere in a part of a picture where no text is.
double leastContrast(const QImage& picture, const QRect& within, double opacity) {
  double least = 21;
  for (int y = within.top(); y <= within.bottom(); ++y) {
    for (int x = within.left(); x <= within.right(); ++x) {
      const QColor ground = picture.pixelColor(x, y);
      least = std::min(least, textContrast(ground.redF(), ground.greenF(), ground.blueF(), opacity));
    }
  }
  return least;
}

/// The same where white text is drawn, beside it: of the means of squares that keep off it. A square is about
/// half as wide as the strokes of the smallest text: a star counts by its share.
double leastContrastBeside(const QImage& picture, const QRect& within, double opacity) {
  constexpr int reach = 2, distance = 2 * reach;
  constexpr double ink = 0.5;  // luminance
  double least = 21;
  for (int y = within.top() + distance; y <= within.bottom() - distance; ++y) {
    for (int x = within.left() + distance; x <= within.right() - distance; ++x) {
      double red = 0, green = 0, blue = 0, brightest = 0;
      for (int dy = -distance; dy <= distance; ++dy) {
        for (int dx = -distance; dx <= distance; ++dx) {
          const QColor ground = picture.pixelColor(x + dx, y + dy);
          brightest = std::max(brightest, luminance(ground.redF(), ground.greenF(), ground.blueF()));
          if (std::max(std::abs(dx), std::abs(dy)) > reach) continue;
          red += ground.redF();
          green += ground.greenF();
          blue += ground.blueF();
        }
      }
      constexpr double count = (2 * reach + 1) * (2 * reach + 1);
      if (brightest <= ink)
        least = std::min(least, textContrast(red / count, green / count, blue / count, opacity));
    }
  }
  return least;
}

/// The least contrast of each text that stands on the wallpaper itself, beside it: the clock's glow counts.
struct BareContrast {
  double status, date, time;
};
BareContrast bareContrast(const SequenceDocument& document, Rendering rendering, double scale) {
  const QImage picture = lockScreen(document, rendering, scale);
  const LockScreenLayout layout = lockScreenLayout(document, 0);
  const auto least = [&](const QRectF& points, double opacity) {
    return leastContrastBeside(picture, QRectF(points.topLeft() * scale, points.size() * scale).toRect(),
                               opacity);
  };
  return {least(layout.statusBar, 1), least(layout.date, LockScreenMetrics::dateOpacity),
          least(layout.time, LockScreenMetrics::timeOpacity)};
}

/// The least contrast of each text that stands on plates: those of four cards where no text is drawn, and the
/// symbol of an orb.
struct PlateContrast {
  double title = 21, message = 21, time = 21, orb = 21;
};
PlateContrast plateContrast(SequenceDocument document, Rendering rendering, double scale) {
  document.notifications.clear();
  for (int i = 0; i < 5; ++i) document.notifications.append(pingOf(u"none"_s, {}, {}));
  const QImage picture = lockScreen(document, rendering, scale);
  const LockScreenLayout layout = lockScreenLayout(document, 5);
  const auto within = [&](const QRectF& points) {
    return QRectF(points.topLeft() * scale, points.size() * scale).toRect();
  };
  PlateContrast least;
  for (const QRectF& card : layout.cards) {
    // Its time label is drawn: that place is measured just beside it.
    const CardLayout places = cardLayout(card.size(), 24);
    const QPointF at = card.topLeft();
    const auto line = [&](const QPointF& baseline, double width) {
      return within({at.x() + baseline.x(), at.y() + baseline.y() - 12, width, 16});
    };
    least.title = std::min(least.title, leastContrast(picture, line(places.title, places.titleRoom), 1));
    least.message = std::min(least.message, leastContrast(picture, line(places.message, places.messageRoom),
                                                          CardMetrics::messageOpacity));
    least.time = std::min(
        least.time, leastContrast(picture, line(places.time - QPointF(26, 0), 20), CardMetrics::timeOpacity));
    least.time = std::min(
        least.time, leastContrast(picture, line(places.time + QPointF(0, 16), 24), CardMetrics::timeOpacity));
  }
  const QRectF orb = layout.torchOrb.rect;
  const QPointF middle = orb.center();
  least.orb = leastContrast(picture, within({middle.x() - 20, middle.y() - 8, 12, 16}), 1);
  return least;
}

QString number(double value) {
  return QString::number(value, 'f', 1);
}

QRectF cardAreaWithRoom(int cards) {
  const LockScreenLayout layout = lockScreenLayout(documentOn({{}, u"one"_s, {}}), cards);
  const double top = layout.cardArea.top() - 14;
  return {0, top, LockScreenMetrics::canvasWidth, layout.card(cards - 1).bottom() + 20 - top};
}

}  // namespace

QImage wallpaperSheet(const QString&) {
  Sheet sheet(6);
  for (const Studio::Wallpaper& wallpaper : Studio::wallpapers()) {
    for (const int cards : {0, 1, 5}) {
      const SequenceDocument document = documentOn({{}, wallpaper.id, {}}, cards);
      QString caption = u"%1, %2 cards"_s.arg(wallpaper.label).arg(cards);
      if (cards == 0) {
        const BareContrast least = bareContrast(document, Rendering::Movie, captureScale);
        caption += u": status %1, date %2, clock %3"_s.arg(number(least.status), number(least.date),
                                                           number(least.time));
      }
      sheet.add(lockScreen(document, Rendering::Movie, 1), caption);
    }
  }
  return sheet.image();
}

QImage glassSheet(const QString& scratch) {
  const QList<Backdrop> backdrops = hardBackdrops(scratch);
  Sheet sheet(int(backdrops.size()));
  for (const Rendering rendering : {Rendering::Movie, Rendering::Live}) {
    sheet.startRow(rendering == Rendering::Movie ? u"Captured: material"_s : u"Live: glass"_s);
    for (const Backdrop& backdrop : backdrops) {
      const SequenceDocument document = documentOn(backdrop, 5);
      const PlateContrast least = plateContrast(document, rendering, captureScale);
      sheet.add(lockScreen(document, rendering, 1),
                u"%1: title %2, message %3, time %4, orb %5"_s.arg(backdrop.name, number(least.title),
                                                                   number(least.message), number(least.time),
                                                                   number(least.orb)));
    }
  }
  return sheet.image();
}

QImage rimSheet(const QString& scratch) {
  Sheet sheet(4);
  for (const Backdrop& backdrop : hardBackdrops(scratch)) {
    const SequenceDocument document = documentOn(backdrop, 2);
    const LockScreenLayout layout = lockScreenLayout(document, 2);
    const QRectF card = layout.card(0), orb = layout.torchOrb.rect;
    const QRectF leftEnd(card.left() - 12, card.top() - 14, 150, 124);
    const QRectF around = orb.adjusted(-16, -16, 16, 20);
    for (const Rendering rendering : {Rendering::Movie, Rendering::Live}) {
      const QString name = backdrop.name + (rendering == Rendering::Movie ? u", captured"_s : u", live"_s);
      const QImage picture = lockScreen(document, rendering, 3);
      sheet.add(part(picture, leftEnd, 3), name);
      sheet.add(part(picture, around, 3), name);
    }
  }
  return sheet.image();
}

QImage scriptSheet(const QString&) {
  const auto generic = [](const QString& icon, const QString& color, const QString& title,
                          const QString& message) {
    Ping ping = pingOf(u"messages"_s, title, message);
    ping.appId = u"other"_s;
    ping.icon = icon;
    ping.color = color;
    return ping;
  };
  const auto custom = [](const QString& label, const QString& title, const QString& message) {
    Ping ping = pingOf(u"custom"_s, title, message);
    ping.appLabel = label;
    return ping;
  };
  struct Screen {
    const char* wallpaper;
    QString dateLabel, timeLabel;
    QList<Ping> pings;
  };
  const QList<Screen> screens = {
      {"one",
       u"Žofín, ÅÉÎÕÜ gjpqyç"_s,
       u"11:11"_s,
       {custom(u"Ångström"_s, u"Ångström ÉÊÑÜ gjpqy"_s, u"Ůj ůžasně řekl: „příště“ gjpqy ÇŞŢ Ứ"_s),
        generic(u"ß"_s, u"#2f6bff"_s, u"Ἀθηνᾶ Ελλάδα"_s, u"Ψυχή, ἦθος καὶ γλῶσσα — ωραία"_s),
        generic(u"Ж"_s, u"#a0522d"_s, u"Їжак Щука Ёлка"_s, u"Съешь ещё этих мягких французских булок"_s),
        custom(u"zoë"_s, u"zoë & co."_s, u"ffi fl 0O Il1 «quote» “quote” 1/2 ½ → €£¥₿"_s),
        generic(u"$"_s, u"#008080"_s, u"AV To Wa Ty. 11:11"_s, u"Kerning: AVATAR, Type, Yo, Lj, LT"_s)}},
      {"two",
       u"الأحد ١٦ نوفمبر"_s,
       u"٩:٤١"_s,
       {generic(u"م"_s, u"#7a3cff"_s, u"محمد العربي"_s, u"رصيدك الآن ١٬٨٤٠ دولارًا، شكرًا جزيلاً"_s),
        generic(u"ש"_s, u"#006cd1"_s, u"שרה לוי"_s, u"שָׁלוֹם! מתי אתה מגיע? 10:30"_s),
        generic(u"پ"_s, u"#c2185b"_s, u"پرویز"_s, u"سلام، کجایی؟ گچ پژ ٹڈ"_s),
        custom(u"مرحبا"_s, u"Mixed عربي and English"_s, u"call me اتصل بي at 5 PM מחר please"_s),
        generic(u"ک"_s, u"#444444"_s, u"عنوان طويل جدا يجب أن يقطع في مكان ما هنا قبل الوقت"_s,
                u"رسالة طويلة جدا يجب أن تقطع في مكان ما هنا لأنها لا تتسع في سطر واحد أبدا"_s)}},
      {"three",
       u"วันอาทิตย์ที่ ๑๖ พ.ย."_s,
       u"21:07"_s,
       {generic(u"ท"_s, u"#d81b60"_s, u"ที่นี่ ญี่ปุ่น ปู่ย่า"_s, u"น้ำใจ กตัญญู ฎีกา ฐานะ สุขสันต์วันเกิด"_s),
        generic(u"क"_s, u"#ef6c00"_s, u"प्रिया शर्मा"_s, u"क्षत्रिय ज्ञान श्रृंखला — कृपया ३ बजे आइए"_s),
        generic(u"বা"_s, u"#00897b"_s, u"বাংলা"_s, u"কেমন আছো? ক্ষুধা লেগেছে"_s),
        generic(u"த"_s, u"#6a1b9a"_s, u"தமிழ் செய்தி"_s, u"வணக்கம், எப்படி இருக்கிறீர்கள்?"_s),
        custom(u"हिन्दी"_s, u"हिन्दी ऐप"_s, u"हिन्दी & ไทย & Latin on one line"_s)}},
      {"four",
       u"11月16日 日曜日"_s,
       u"9:41"_s,
       {generic(u"渋"_s, u"#e53935"_s, u"渋谷スニーカー"_s, u"写真に「いいね！」しました。👟"_s),
        generic(u"微"_s, u"#2e7d32"_s, u"微信支付"_s, u"您已收到 ¥1,840.00，请查收。龘"_s),
        generic(u"카"_s, u"#f9a825"_s, u"김민준"_s, u"오늘 저녁에 뭐 해? 뷁 꿻"_s),
        custom(u"漢字"_s, u"漢字アプリ"_s, u"日本語とEnglishと한국어 mixed"_s),
        generic(u"あ"_s, u"#1565c0"_s, u"とても長いタイトルはここで切れます、はい"_s,
                u"とても長いメッセージもここで切れます。最後まで読めないはずです。"_s)}},
      {"one",
       u"Emoji 🎉 day"_s,
       u"4:20"_s,
       {generic(
            u"🔥"_s, u"#111111"_s, u"👩‍👩‍👧‍👦 Family 🏳️‍🌈"_s,
            u"👍🏻👍🏽👍🏿 🇯🇵🇺🇸🇩🇪 👨🏾‍🚀 ❤️‍🔥 🥹 1️⃣ ☎️ ✅"_s),
        custom(
            u"🎧 music"_s, u"😂😂😂😂😂😂😂😂😂😂😂😂😂😂😂"_s,
            u"👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨👩‍❤️‍💋‍👨"_s),
        generic(u"♥"_s, u"#c62828"_s, u"♥ ☺ ★ ✉ ♪ ◎ ●"_s,
                u"text ♥︎ and emoji ♥️, ☀︎ ☀️, ™ © ®, each as it was typed"_s),
        custom(QString(), QString(), QString()),
        generic(QString(), u"#38c976"_s, u"A title far too long for the room beside its time label"_s,
                u"A message far too long for one line, which ends in an ellipsis before the rim"_s)}},
  };
  Sheet sheet(5);
  for (const Screen& screen : screens) {
    SequenceDocument document = documentOn({{}, QString::fromLatin1(screen.wallpaper), {}});
    document.dateLabel = screen.dateLabel;
    document.timeLabel = screen.timeLabel;
    document.notifications = screen.pings;
    const QImage picture = lockScreen(document, Rendering::Movie, 2);
    sheet.add(part(picture, {0, 0, LockScreenMetrics::canvasWidth, cardAreaWithRoom(5).bottom()}, 2),
              screen.dateLabel);
  }
  return sheet.image();
}

QImage arrivalSheet(const QString&) {
  SequenceDocument document = documentOn({{}, u"four"_s, {}}, 6);
  document.maxVisible = 5;
  for (qsizetype i = 0; i < document.notifications.size(); ++i)
    document.notifications[i].delayMs = 1000.0 * double(i);
  const SequencePlayer player(document);
  const LockScreenView view{document, player, Rendering::Live};
  CardStackAnimation animation;
  animation.reset(document.visiblePings(4500));
  animation.update(document.visiblePings(5000), 0);

  Sheet sheet(6);
  LockScreenCache cache;
  for (const int ms : {0, 33, 67, 100, 150, 200, 250, 300, 400, 500, 700, 1000}) {
    const QImage picture = view.picture(cache, animation.cards(ms), 1);
    sheet.add(part(picture, cardAreaWithRoom(6), 1), u"%1 ms"_s.arg(ms));
  }
  return sheet.image();
}

}  // namespace brisklet
