#include "studio/editor/studio_view.h"

#include "base/error.h"
#include "desktop/file_manager.h"
#include "desktop/file_panels.h"
#include "sound/tone_player.h"
#include "support/printing.h"

#include <gtest/gtest.h>

#include <QCoroTimer>
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
    exported = document;
    exportedStyle = style;
    reportProgress = progress;
    while (!exportEnds) {
      co_await QCoro::sleepFor(1ms);
      if (stop.stop_requested() && ++exportsStopped > 0) throw Error("Stopped.");
    }
    if (!exportFailure.isEmpty()) throw Error(exportFailure);
  }

  StudioView::Services services() {
    StudioView::Services services;
    services.tones = &outside;
    services.panels = &outside;
    services.fileManager = &outside;
    services.exportMovie = std::bind_front(&StudioViewTest::exportUntilTold, this);
    services.decodeImage = [](const QString& path) {
      return path.endsWith("broken.png") ? std::nullopt : std::optional(QImage(2, 2, QImage::Format_RGB32));
    };
    services.imageSuffixes = QStringList{"jpg", "png"};
    services.saveWallpaper = [this](const QImage&) {
      if (!storeFailure.isEmpty()) throw Error(storeFailure);
      return QString("/stored/%1.jpg").arg(++storedPhotos);
    };
    services.clock = [this] { return nowMs; };
    return services;
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
  void addPings(int count) {
    while (count-- > 0) view->addPing();
  }
  void choosePhoto(const QString& path) {
    view->pickPhotoChip();
    outside.answer(path);
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
  void beginExport() {
    view->exportMovie();
    outside.answer("/movies/launch.mp4");
  }
  bool exportEnded() {
    return QTest::qWaitFor([this] { return !view->exporting(); });
  }

  const PingType viral = PingType::types("tiktok")[5];
  double nowMs = 1000;
  Outside outside;
  SequenceDocument exported;
  MovieStyle exportedStyle;
  StudioView::Progress reportProgress;
  bool exportEnds = false;
  QString exportFailure, storeFailure;
  int storedPhotos = 0, exportsStopped = 0;
  std::unique_ptr<StudioView> view = std::make_unique<StudioView>(services());
};

TEST_F(StudioViewTest, pingsAreMadeFromTheChoicesAndLandAfterTheLastInTheList) {
  EXPECT_EQ(view->summary(), "No pings");
  EXPECT_FALSE(view->canPlay() || view->canExport());
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

  const QString cases[][3] = {{" zed", " zed", " "},
                              {"\n\t", "App", "A"},
                              {"ßa", "ßa", "SS"},
                              {"👩‍👧x", "👩‍👧x", "👩‍👧"}};
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
  const auto textsOfNextPing = [this](const QString& message) {
    view->setSenderText("@sam");
    view->setMessageText(message);
    view->addPing();
    return pings().last().title + ": " + pings().last().message;
  };
  EXPECT_EQ(textsOfNextPing(""), "@sam: liked your video.");
  view->pickType(viral);
  EXPECT_EQ(textsOfNextPing("hi"), "TikTok: hi") << "A template's own title wins over what is typed.";
}

TEST_F(StudioViewTest, theSelectedPingIsEditedAndLendsItsAppAndTemplate) {
  addPings(2);
  view->setDelayText("9");  // of nothing
  view->selectPing(ping(1));
  view->pickApp("instagram");
  EXPECT_EQ(list(), "tiktok @maya: liked your video. 700 | *tiktok @maya: liked your Reel. 1400");
  EXPECT_EQ(choices(), "instagram | reel-like | App | jordan | liked your video.");
  view->applyType(viral);
  EXPECT_EQ(view->selectedTypeId(), "reel-like");
  view->setMessageText("no template says this");
  view->setDelayText("1,5");
  view->setDelayText("abc");
  EXPECT_EQ(list(), "tiktok @maya: liked your video. 700 | *tiktok TikTok: no template says this 1500");
  view->removePing(ping(0).id);
  EXPECT_EQ(view->selectedIndex(), 0);
  view->selectPing(ping(0));
  EXPECT_FALSE(view->selectedPingId()) << "a second time takes it back";

  view->pickApp("custom");
  view->setCustomAppLabel("Zed");
  view->setMessageText("my own words");
  view->addPing();
  view->setCustomAppLabel("Other");
  view->selectPing(ping(1));
  EXPECT_EQ(choices(), "custom | note | Zed | Alex | my own words");
  view->removePing(ping(1).id);
  EXPECT_FALSE(view->selectedPingId());
}

TEST_F(StudioViewTest, startingNewForgetsEverythingButARunningExport) {
  addPings(3);
  view->selectPing(ping(1));
  view->pickApp("custom");
  beginExport();
  choosePhoto("/photos/broken.png");
  view->play();
  const QPointer<SequencePlayer> former = view->player();
  // In answer to a signal of the player that goes away.
  QObject::connect(former, &SequencePlayer::elapsedMsChanged, view.get(), [this] {
    if (view->isPlaying()) view->startNew();
  });
  tonesUntil(100);
  EXPECT_EQ(view->document(), SequenceDocument::blank());
  EXPECT_EQ(choices(), "tiktok | like | App | @maya | liked your video.");
  EXPECT_EQ(view->delayText() + view->error(), "");
  EXPECT_NE(view->player(), former);
  EXPECT_TRUE(view->exporting());
  exportEnds = true;
  EXPECT_TRUE(exportEnded());
}

TEST_F(StudioViewTest, changesAreTakenBackWithWhatWasSelectedAndDrafted) {
  addPings(2);
  view->selectPing(ping(1));
  view->nudgePing(ping(1).id, -2000);
  EXPECT_EQ(ping(1).delayMs, 0);
  view->clearSelection();
  view->setMessageText("my own");
  const SequenceDocument composed = view->document();
  view->startNew();
  view->undo();
  EXPECT_EQ(view->document(), composed);
  EXPECT_EQ(view->messageText(), "my own");
  view->undo();
  EXPECT_EQ(view->selectedIndex(), 1);
  for (int i = 0; i < 3; ++i) view->undo();
  EXPECT_EQ(view->document(), SequenceDocument::blank());
  for (int i = 0; i < 3; ++i) view->redo();
  EXPECT_EQ(view->document(), composed);
}

TEST_F(StudioViewTest, typingIntoOneFieldIsOneChangeUntilItPauses) {
  for (const QString title : {"a", "ab"}) view->setTitle(title);
  nowMs += 3000;
  view->setTitle("abc");
  view->undo();
  EXPECT_EQ(view->document().title, "ab");
  view->undo();
  EXPECT_EQ(view->document().title, "Untitled");
  view->setTitle("ab");
  view->endTyping();
  view->setTitle("x");
  view->setTitle("ab");  // all of it taken back
  view->redo();
  EXPECT_EQ(view->document().title, "ab") << "There is nothing to redo after a change.";
  view->undo();
  EXPECT_EQ(view->document().title, "Untitled");
  for (int i = 0; i < 600; ++i) i < 300 ? view->pickWallpaper(QString::number(i)) : view->undo();
  EXPECT_EQ(view->document().wallpaper, "99") << "200 changes are kept.";
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

TEST_F(StudioViewTest, anExportWritesTheDocumentOfThatMomentAndRevealsIt) {
  view->exportMovie();  // of nothing
  view->setTitle("Launch Day #2");
  addPings(2);
  for (int i = 0; i < 2; ++i) view->exportMovie();
  view->pickCustomWallpaper();
  ASSERT_EQ(outside.saves.size(), 1);
  EXPECT_TRUE(outside.opens.isEmpty()) << "another panel is open";
  const SavePanel& panel = outside.saves[0];
  EXPECT_EQ(panel.title + ' ' + panel.proposedName, "Export notification video launch-day-2.mp4");
  EXPECT_EQ(panel.kinds, (QStringList{"MPEG-4 movie", "MPEG-4 movie, cards in motion",
                                      "MPEG-4 movie, cards in motion, 9:16"}));
  outside.chosenKind = 2;
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
  EXPECT_EQ(exported, document);
  EXPECT_TRUE((exportedStyle == MovieStyle{.inMotion = true, .page = {1080, 1920}}));
  EXPECT_EQ(progress, (QList<double>{0.25, 1, 0}));
  EXPECT_EQ(outside.revealed, QStringList{"/movies/launch.mp4"});
}

TEST_F(StudioViewTest, aFailedExportSaysWhyAndAStoppedOneNothing) {
  addPings(1);
  exportEnds = true;
  exportFailure = "The disk is full.";
  beginExport();
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error(), exportFailure);
  exportEnds = false;
  beginExport();
  EXPECT_EQ(view->error(), "");
  view->stopExport();
  ASSERT_TRUE(exportEnded());
  EXPECT_EQ(view->error() + outside.revealed.join(' '), "");
  // Closing the editor stops it, too, also while a panel is open.
  beginExport();
  view->pickCustomWallpaper();
  view.reset();
  outside.answer("/photos/a.jpg");
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
  storeFailure.clear();
  view->usePhoto("/photos/late.png");
  view->startNew();
  QThreadPool::globalInstance()->waitForDone();
  settle();
  EXPECT_EQ(wallpaper(), "one ") << "It was for the former sequence.";
}

}  // namespace
}  // namespace brisklet
