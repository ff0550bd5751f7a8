#include "studio/editor/studio_view.h"

#include "base/error.h"
#include "desktop/file_manager.h"
#include "desktop/file_panels.h"
#include "sound/tone_player.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QCoroTimer>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>
#include <chrono>

using namespace std::chrono_literals;

namespace brisklet {
namespace {

/// What is outside the editor: records what it is asked for. Panels stay open until the test answers.
struct Outside : TonePlayer, FilePanels, FileManager {
  void prepare() override {}
  void play(const QString& appId) override { played.append(appId); }
  void reveal(const QString& path) override { revealed.append(path); }
  void save(const SavePanel& panel, SaveDone done) override {
    saves.append(panel);
    pending = [this, done = std::move(done)](const std::optional<QString>& path) {
      done(path ? std::optional(ChosenFile{*path, chosenKind}) : std::nullopt);
    };
  }
  void open(const OpenPanel& panel, Done done) override {
    opens.append(panel);
    pending = std::move(done);
  }
  void answer(const std::optional<QString>& path) { std::exchange(pending, {})(path); }

  QStringList played, revealed;
  QList<SavePanel> saves;
  QList<OpenPanel> opens;
  qsizetype chosenKind = 0;
  Done pending;
};

struct StudioViewTest : testing::Test {
  /// An export that goes on until the test ends it or it is stopped.
  QCoro::Task<> exportUntilTold(SequenceDocument document, MovieStyle style, QString,
                                StudioView::Progress progress, std::stop_token stop) {
    exported.append(document);
    exportedStyle = style;
    reportProgress = progress;
    while (!exportEnds) {
      co_await QCoro::sleepFor(1ms);
      if (stop.stop_requested()) {
        ++exportsStopped;
        throw Error("Stopped.");
      }
    }
    if (!exportFailure.isEmpty()) throw Error(exportFailure);
  }

  StudioView::Services services() {
    return {
        .tones = &outside,
        .panels = &outside,
        .fileManager = &outside,
        .exportMovie = std::bind_front(&StudioViewTest::exportUntilTold, this),
        .decodeImage = [](const QString& path) -> std::optional<QImage> {
          if (path.endsWith("broken.png")) return {};
          return QImage(2, 2, QImage::Format_RGB32);
        },
        .imageSuffixes = {"jpg", "png"},
        .saveWallpaper =
            [this](const QImage&) {
              if (!storeFailure.isEmpty()) throw Error(storeFailure);
              return QString("/stored/%1.jpg").arg(++storedPhotos);
            },
        .clock = [this] { return nowMs; },
    };
  }

  [[nodiscard]] const QList<Ping>& pings() const { return view->document().notifications; }
  [[nodiscard]] const Ping& ping(qsizetype index) const { return pings()[index]; }
  /// What new pings are made from.
  [[nodiscard]] QString choices() const {
    const QStringList parts{view->selectedAppId(), view->selectedTypeId(), view->customAppLabel(),
                            view->draftTitle(), view->draftMessage()};
    return parts.join(" | ");
  }
  /// The pings, the selected one with a star.
  [[nodiscard]] QString list() const {
    QStringList rows;
    for (const Ping& each : pings())
      rows += QString("%1%2 %3: %4 %5")
                  .arg(view->selectedPingId() == each.id ? "*" : "", each.appId, each.title, each.message)
                  .arg(each.delayMs);
    return rows.join(" | ");
  }
  void expectBlankSequence() const {
    EXPECT_EQ(view->document(), SequenceDocument::blank());
    EXPECT_EQ(choices(), "tiktok | like | App | @maya | liked your video.");
    EXPECT_FALSE(view->selectedPingId());
    EXPECT_EQ(view->delayText(), "");
    EXPECT_EQ(view->error(), "");
    EXPECT_EQ(view->summary(), "No pings");
    EXPECT_FALSE(view->canPlay() || view->canExport() || view->isPlaying());
    EXPECT_EQ(view->player()->elapsedMs(), SequencePlayer::finishedMs);
  }
  void addPings(int count) {
    for (int i = 0; i < count; ++i) view->addPing();
  }
  void choosePhoto(const QString& path) {
    view->pickPhotoChip();
    outside.answer(path);
    waitForPhoto();
  }
  static void waitForPhoto() {
    QThreadPool::globalInstance()->waitForDone();
    settle();
  }
  /// Adds a ping that lands at a time, and leaves it unselected.
  void addPingAt(const QString& seconds, const QString& appId) {
    view->pickApp(appId);
    view->addPing();
    view->selectPing(pings().last());
    view->setDelayText(seconds);
    view->clearSelection();
  }
  /// The tones that sound up to this moment of the run, since the last look.
  QString tonesUntil(double elapsedMs) {
    nowMs = 1000 + elapsedMs;
    view->player()->tick();
    settle();
    return std::exchange(outside.played, {}).join(' ');
  }
  /// Lets the reactions run that come after a change.
  static void settle() { QCoreApplication::sendPostedEvents(); }
  void beginExport(const QString& path) {
    view->exportMovie();
    outside.answer(path);
  }
  bool exportEnded() {
    return QTest::qWaitFor([this] { return !view->exporting(); });
  }

  const PingType viral = PingType::types("tiktok")[5];
  double nowMs = 1000;
  Outside outside;
  MovieStyle exportedStyle;
  QList<SequenceDocument> exported;
  StudioView::Progress reportProgress;
  bool exportEnds = false;
  QString exportFailure, storeFailure;
  int storedPhotos = 0, exportsStopped = 0;
  std::unique_ptr<StudioView> view = std::make_unique<StudioView>(services());
};

TEST_F(StudioViewTest, pingsAreMadeFromTheChoicesAndLandAfterTheLastInTheList) {
  expectBlankSequence();
  addPings(1);
  EXPECT_EQ(view->summary(), "1 ping · 2.5s");
  addPings(2);
  EXPECT_EQ(ping(2),
            (Ping{ping(2).id, "tiktok", "TikTok", "♪", "#111111", "@maya", "liked your video.", 2100, {}}));
  EXPECT_EQ(ping(2).id.size(), 36);
  EXPECT_EQ(ping(2).id, ping(2).id.toUpper());
  EXPECT_EQ(view->summary(), "3 pings · 3.9s");
  view->selectPing(ping(0));
  view->setDelayText("3");
  view->selectPing(ping(2));
  view->setDelayText("0,5");
  view->addPing();
  EXPECT_EQ(ping(3).delayMs, 1200) << "after the last in the list, not the latest";
  EXPECT_FALSE(view->selectedPingId());
}

TEST_F(StudioViewTest, aCustomAppTakesItsNameAndIconFromTheField) {
  const QString cases[][3] = {
      {" zed", " zed", " "},
      {"   ", "App", "A"},
      {"\n\t", "App", "A"},
      {"ßa", "ßa", "SS"},
      {"👩‍👧x", "👩‍👧x", "👩‍👧"},
      {"e\u0301a", "e\u0301a", "E\u0301"},
  };
  view->pickApp("custom");
  for (const auto& [typed, label, icon] : cases) {
    view->setCustomAppLabel(typed);
    view->addPing();
    const Ping& made = pings().last();
    EXPECT_EQ(
        made,
        (Ping{
            made.id, "custom", label, icon, "#111111", "Alex", "sent you a notification", made.delayMs, {}}));
  }
}

TEST_F(StudioViewTest, draftsAndTemplatesMakeTheTexts) {
  const auto textsOfNextPing = [this] {
    view->addPing();
    return pings().last().title + ": " + pings().last().message;
  };
  view->setSenderText("@sam");
  view->setMessageText("  ");
  EXPECT_EQ(textsOfNextPing(), "@sam:   ");
  view->setMessageText("");
  EXPECT_EQ(textsOfNextPing(), "@sam: liked your video.");
  // A template's own title wins over what is typed afterwards.
  view->pickType(viral);
  EXPECT_EQ(view->draftTitle(), "TikTok");
  view->setSenderText("@sam");
  EXPECT_EQ(textsOfNextPing(), "TikTok: Your video is popular right now");
  view->pickType(PingType::types("tiktok")[4]);
  EXPECT_EQ(textsOfNextPing(), "@sam: Dueted your video.");
  view->pickApp("snapchat");
  EXPECT_EQ(choices(), "snapchat | snap | App | Jordan | Sent you a Snap");
}

TEST_F(StudioViewTest, appAndTemplateRewriteTheSelectedPingsTextsOnly) {
  addPings(2);
  view->selectPing(ping(1));
  view->pickApp("instagram");
  EXPECT_EQ(list(), "tiktok @maya: liked your video. 700 | *tiktok @maya: liked your Reel. 1400");
  EXPECT_EQ(choices(), "instagram | reel-like | App | jordan | liked your video.");
  view->applyType(viral);
  EXPECT_EQ(list(),
            "tiktok @maya: liked your video. 700 | *tiktok TikTok: Your video is popular right now 1400");
  EXPECT_EQ(view->selectedTypeId(), "reel-like");
}

TEST_F(StudioViewTest, selectingAPingFindsItsAppAndTemplate) {
  view->pickType(viral);
  view->addPing();
  view->pickApp("custom");
  view->setCustomAppLabel("Zed");
  view->setMessageText("my own words");
  view->addPing();
  view->pickApp("snapchat");
  view->setCustomAppLabel("Other");

  view->selectPing(ping(1));
  EXPECT_EQ(choices(), "custom | note | Zed | Jordan | Sent you a Snap");
  EXPECT_EQ(view->senderText() + ": " + view->messageText() + ' ' + view->delayText(),
            "Alex: my own words 1.4");
  view->selectPing(ping(0));
  view->setMessageText("no template says this");
  view->clearSelection();
  view->selectPing(ping(0));
  EXPECT_EQ(view->selectedTypeId(), "viral") << "found by its title";
  const QString chosen = choices();
  view->selectPing(ping(0));
  EXPECT_FALSE(view->selectedPingId()) << "a second time takes it back";
  EXPECT_EQ(choices(), chosen);
}

TEST_F(StudioViewTest, theFieldsEditTheSelectedPingAndRemovingItEndsTheSelection) {
  addPings(3);
  view->setDelayText("9");  // of nothing
  view->selectPing(ping(2));
  view->setSenderText("@sam");
  view->setMessageText("");
  view->setDelayText("1,5");
  view->setDelayText("abc");
  EXPECT_EQ(
      list(),
      "tiktok @maya: liked your video. 700 | tiktok @maya: liked your video. 1400 | *tiktok @sam:  1500");
  EXPECT_EQ(choices(), "tiktok | like | App | @maya | liked your video.");
  view->removePing(ping(0).id);
  EXPECT_EQ(view->selectedIndex(), 1);
  view->removePing(ping(1).id);
  EXPECT_FALSE(view->selectedPingId());
  EXPECT_EQ(list(), "tiktok @maya: liked your video. 1400");
}

TEST_F(StudioViewTest, startingNewForgetsEverythingButARunningExport) {
  addPings(3);
  view->selectPing(ping(1));
  view->setTitle("Launch");
  view->pickApp("custom");
  view->setCustomAppLabel("Zed");
  beginExport("/movies/launch.mp4");
  choosePhoto("/photos/broken.png");
  view->play();
  const QPointer<SequencePlayer> former = view->player();
  QSignalSpy replaced(view.get(), &StudioView::playerReplaced);

  // In answer to a signal of the player that goes away.
  QObject::connect(former, &SequencePlayer::elapsedMsChanged, view.get(), [this] {
    if (view->isPlaying()) view->startNew();
  });
  tonesUntil(100);
  expectBlankSequence();
  EXPECT_EQ(replaced.size(), 1);
  EXPECT_NE(view->player(), former);
  EXPECT_TRUE(view->exporting());
  exportEnds = true;
  EXPECT_TRUE(exportEnded());
}

TEST_F(StudioViewTest, pingsSoundOnceAsTheyComeIntoViewInDocumentOrder) {
  addPingAt("0.5", "cashapp");
  addPingAt("0.2", "instagram");
  addPingAt("0.4", "snapchat");
  view->play();
  EXPECT_EQ(tonesUntil(199), "");
  EXPECT_EQ(tonesUntil(200), "instagram");
  EXPECT_EQ(tonesUntil(217), "");
  EXPECT_EQ(tonesUntil(600), "cashapp snapchat");
  EXPECT_EQ(tonesUntil(2300), "");
  EXPECT_FALSE(view->isPlaying());
}

TEST_F(StudioViewTest, atTheStartSoundsOnlyWhatTheFinishedStackDidNotShow) {
  addPingAt("0", "cashapp");
  view->play();
  EXPECT_EQ(tonesUntil(20), "");
  view->player()->play();  // again, from what the run shows
  EXPECT_EQ(tonesUntil(40), "");
  view->player()->stop();
  addPings(5);
  nowMs = 1000;
  view->play();
  EXPECT_EQ(tonesUntil(0), "cashapp") << "It was pushed off the stack.";
}

TEST_F(StudioViewTest, anEditDuringARunGoesOnWithItAndMaySound) {
  addPingAt("5", "messages");
  view->play();
  EXPECT_EQ(tonesUntil(1000), "");
  view->play();
  view->selectPing(ping(0));
  view->setDelayText("0.9");
  EXPECT_EQ(tonesUntil(1000), "messages");
  EXPECT_TRUE(view->isPlaying());
  EXPECT_EQ(view->player()->elapsedMs(), 1000);
  // Beyond the length that the run had when it started, nothing sounds in it.
  view->setDelayText("6.805");
  EXPECT_EQ(tonesUntil(6810), "");
  EXPECT_FALSE(view->isPlaying());
}

TEST_F(StudioViewTest, anExportWritesTheDocumentOfThatMomentAndRevealsIt) {
  view->exportMovie();
  EXPECT_TRUE(outside.saves.isEmpty()) << "there is nothing to export";
  view->setTitle("Launch Day #2");
  addPings(2);
  view->exportMovie();
  view->exportMovie();
  view->pickCustomWallpaper();
  ASSERT_EQ(outside.saves.size(), 1);
  EXPECT_TRUE(outside.opens.isEmpty()) << "another panel is open";
  EXPECT_EQ(outside.saves[0].title, "Export notification video");
  EXPECT_EQ(outside.saves[0].proposedName, "launch-day-2.mp4");
  EXPECT_EQ(outside.saves[0].suffix, "mp4");
  EXPECT_EQ(outside.saves[0].kinds, (QStringList{"MPEG-4 movie", "MPEG-4 movie, cards in motion",
                                                 "MPEG-4 movie, cards in motion, 9:16"}));
  outside.chosenKind = 2;
  EXPECT_FALSE(view->exporting());

  QList<double> progress;
  QObject::connect(view.get(), &StudioView::exportProgressChanged,
                   [&] { progress.append(view->exportProgress()); });
  outside.answer("/movies/launch.mp4");
  EXPECT_TRUE(view->exporting() && !view->canExport());
  const SequenceDocument document = view->document();
  view->addPing();
  reportProgress(1, 4);
  reportProgress(4, 4);
  exportEnds = true;
  ASSERT_TRUE(exportEnded());
  ASSERT_EQ(exported.size(), 1);
  EXPECT_EQ(exported[0], document);
  EXPECT_TRUE((exportedStyle == MovieStyle{.inMotion = true, .page = {1080, 1920}}));
  EXPECT_EQ(progress, (QList<double>{0.25, 1, 0}));
  EXPECT_EQ(outside.revealed, QStringList{"/movies/launch.mp4"});
}

TEST_F(StudioViewTest, aFailedExportSaysWhyAndRevealsNothing) {
  addPings(1);
  exportEnds = true;
  exportFailure = "The disk is full.";
  QSignalSpy errors(view.get(), &StudioView::errorChanged);
  beginExport("/movies/a.mp4");
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error(), exportFailure);
  EXPECT_TRUE(outside.revealed.isEmpty());
  EXPECT_EQ(errors.size(), 1);

  // Cancelling keeps the message; the next export that starts clears it, and so does its reader.
  view->exportMovie();
  outside.answer({});
  EXPECT_FALSE(view->exporting());
  EXPECT_EQ(view->error(), exportFailure);
  exportEnds = false;
  beginExport("/movies/a.mp4");
  EXPECT_EQ(view->error(), "");
  exportEnds = true;
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error(), exportFailure);
  view->dismissError();
  EXPECT_EQ(view->error(), "");
}

TEST_F(StudioViewTest, aStoppedExportIsNoFailure) {
  addPings(1);
  beginExport("/movies/a.mp4");
  reportProgress(1, 100);
  view->stopExport();
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error(), "");
  EXPECT_TRUE(outside.revealed.isEmpty());
  // Closing the editor stops it, too, also while a panel is open.
  beginExport("/movies/a.mp4");
  view->pickCustomWallpaper();
  view.reset();
  outside.answer("/photos/a.jpg");
  reportProgress(2, 100);
  EXPECT_TRUE(QTest::qWaitFor([this] { return exportsStopped == 2; }));
}

TEST_F(StudioViewTest, aPhotoBecomesTheWallpaperByItsStoredCopy) {
  const auto wallpaper = [this] { return view->document().wallpaper + ' ' + view->document().wallpaperUrl; };
  choosePhoto("/photos/a.png");
  EXPECT_EQ(outside.opens[0].title, "Choose a lock screen photo");
  EXPECT_EQ(outside.opens[0].suffixes, (QStringList{"jpg", "png"}));
  EXPECT_EQ(wallpaper(), "custom /stored/1.jpg");
  view->pickWallpaper("two");
  EXPECT_EQ(wallpaper(), "two /stored/1.jpg");
  view->pickPhotoChip();
  EXPECT_EQ(outside.opens.size(), 1) << "the stored photo needs no panel";
  EXPECT_EQ(wallpaper(), "custom /stored/1.jpg");
  view->pickPhotoChip();
  outside.answer({});
  choosePhoto("/photos/broken.png");
  EXPECT_EQ(view->error(), "Could not open that photo.");
  storeFailure = "disk full";
  choosePhoto("/photos/a.png");
  EXPECT_EQ(view->error(), "Could not save that photo.");
  EXPECT_EQ(wallpaper(), "custom /stored/1.jpg");
}

}  // namespace
}  // namespace brisklet
