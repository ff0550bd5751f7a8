#include "studio/editor/studio_view.h"

#include "base/background.h"
#include "base/error.h"
#include "base/graphemes.h"
#include "desktop/file_manager.h"
#include "desktop/file_panels.h"
#include "model/document_json.h"
#include "model/text.h"
#include "sound/tone_player.h"
#include "studio/editor/delay_text.h"
#include "studio/editor/slug.h"

#include <QFileInfo>
#include <algorithm>
#include <exception>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

constexpr double gapMs = 700;
constexpr QSize previewSize(96, 96);  // pixels, of a photo in its panel
/// How much is kept to go back to: changes, and pings in all of them.
constexpr qsizetype mostChanges = 200, mostPingsKept = 200'000;
/// Who pauses this long while typing begins another change.
constexpr double pauseMs = 2000;

/// What a movie can be, as the save panel offers it.
struct MovieKind {
  QString name;
  MovieStyle style;
};

QList<MovieKind> movieKinds() {
  constexpr QSize portraitPage(1080, 1920);
  return {{u"MPEG-4 movie"_s, {}},
          {u"MPEG-4 movie, cards in motion"_s, {.inMotion = true, .page = {}}},
          {u"MPEG-4 movie, cards in motion, 9:16"_s, {.inMotion = true, .page = portraitPage}}};
}

std::optional<qsizetype> indexOf(const QList<Ping>& pings, const std::optional<QString>& id) {
  if (!id) return {};
  const auto found =
      std::find_if(pings.begin(), pings.end(), [&id](const Ping& ping) { return sameText(ping.id, *id); });
  if (found == pings.end()) return {};
  return found - pings.begin();
}

/// The template of this id, or the app's first.
PingType typeNamed(const QList<PingType>& types, const QString& id) {
  const auto found =
      std::find_if(types.begin(), types.end(), [&id](const PingType& type) { return sameText(type.id, id); });
  return found == types.end() ? types.first() : *found;
}

/// The template from which a ping looks to be made, or the app's first.
QString typeIdOf(const Ping& ping) {
  const QList<PingType>& types = PingType::types(ping.appId);
  const auto found = std::find_if(types.begin(), types.end(), [&ping](const PingType& type) {
    return sameText(type.message, ping.message) ||
           (type.titleOverride && sameText(*type.titleOverride, ping.title));
  });
  return found == types.end() ? types.first().id : found->id;
}

QStringList ids(const QList<Ping>& pings) {
  QStringList ids;
  for (const Ping& ping : pings) ids.append(ping.id);
  return ids;
}

}  // namespace

StudioView::State StudioView::firstState() {
  return {
      .document = SequenceDocument::blank(),
      .selectedAppId = u"tiktok"_s,
      .selectedTypeId = u"like"_s,
      .customAppLabel = u"App"_s,
      .draftTitle = PingType::defaultSender(u"tiktok"_s),
      .draftMessage = u"liked your video."_s,
      .selectedPingId = {},
  };
}

StudioView::StudioView(Services services, QObject* parent)
    : QObject(parent), services_(std::move(services)), state_(firstState()) {
  makePlayer();
}

StudioView::~StudioView() {
  stopExport();
}

void StudioView::makePlayer() {
  player_ = new SequencePlayer(state_.document, services_.clock, this);
  visibleIds_ = ids(player_->document().visiblePings(player_->elapsedMs()));
  connect(player_, &SequencePlayer::elapsedMsChanged, this, &StudioView::watchVisiblePings);
  connect(player_, &SequencePlayer::documentChanged, this, &StudioView::watchVisiblePings);
  connect(player_, &SequencePlayer::isPlayingChanged, this, &StudioView::playingChanged);
}

template <typename Edit>
void StudioView::change(Edit edit, const QString& typedInto) {
  const State former = state_;
  edit(state_);
  if (!(former.document == state_.document)) remember(former, typedInto);
  announceChanges(former);
}

void StudioView::remember(const State& former, const QString& typedInto) {
  const double nowMs = services_.clock();
  const bool goesOn = !typedInto.isEmpty() && typedInto == typedInto_;
  if (!goesOn) typedFrom_ = past_.size();
  if (!goesOn || nowMs - typedAtMs_ >= pauseMs) past_.append(former);
  typedInto_ = typedInto;
  typedAtMs_ = nowMs;
  future_.clear();
  // What is taken back while it is typed, by the field's own undo say, is no change any more.
  const auto same = std::find_if(past_.cbegin() + typedFrom_, past_.cend(),
                                 [this](const State& state) { return state.document == state_.document; });
  if (same != past_.cend()) {
    past_.erase(same, past_.cend());
    typedAtMs_ = -std::numeric_limits<double>::infinity();
  }
  qsizetype pings = 0;
  const auto oldest = std::find_if(past_.crbegin(), past_.crend(), [&pings](const State& state) {
    return (pings += state.document.notifications.size()) > mostPingsKept;
  });
  const qsizetype forgotten = std::max({qsizetype{0}, past_.crend() - oldest, past_.size() - mostChanges});
  past_.remove(0, forgotten);
  typedFrom_ = std::max<qsizetype>(0, typedFrom_ - forgotten);
}

void StudioView::travel(QList<State>& from, QList<State>& to) {
  endTyping();
  if (from.isEmpty()) return;
  to.append(state_);
  const State former = std::exchange(state_, from.takeLast());
  announceChanges(former);
}

void StudioView::undo() {
  travel(past_, future_);
}

void StudioView::redo() {
  travel(future_, past_);
}

void StudioView::announceChanges(const State& former) {
  const bool selectionDiffers = former.selectedAppId != state_.selectedAppId ||
                                former.selectedTypeId != state_.selectedTypeId ||
                                former.selectedPingId != state_.selectedPingId;
  const bool draftsDiffer = former.draftTitle != state_.draftTitle ||
                            former.draftMessage != state_.draftMessage ||
                            former.customAppLabel != state_.customAppLabel;
  if (!(former.document == state_.document)) {
    syncPlayer();
    Q_EMIT documentChanged();
  }
  if (selectionDiffers) Q_EMIT selectionChanged();
  if (draftsDiffer) Q_EMIT draftsChanged();
}

void StudioView::watchVisiblePings() {
  // One look after all that one tick or command does to the player: the tick that ends a run must not sound
  // pings beyond the run's length.
  if (std::exchange(looksSoon_, true)) return;
  QMetaObject::invokeMethod(this, &StudioView::lookAtVisiblePings, Qt::QueuedConnection);
}

void StudioView::lookAtVisiblePings() {
  looksSoon_ = false;
  const QStringList former =
      std::exchange(visibleIds_, ids(player_->document().visiblePings(player_->elapsedMs())));
  if (!player_->isPlaying() || !services_.tones || former == visibleIds_) return;
  const auto isNew = [&former, this](const Ping& ping) {
    return visibleIds_.contains(ping.id) && !former.contains(ping.id);
  };
  for (const Ping& ping : state_.document.notifications) {
    if (isNew(ping)) services_.tones->play(ping.appId);
  }
}

bool StudioView::isSelected(const QString& id) const {
  return state_.selectedPingId && sameText(*state_.selectedPingId, id);
}

std::optional<qsizetype> StudioView::selectedIndex() const {
  return indexOf(state_.document.notifications, state_.selectedPingId);
}

QString StudioView::summary() const {
  const qsizetype count = state_.document.notifications.size();
  if (count == 0) return u"No pings"_s;
  return u"%1 %2 · %3"_s.arg(QString::number(count), count == 1 ? u"ping"_s : u"pings"_s,
                             roundSeconds(state_.document.durationMs()));
}

bool StudioView::canPlay() const {
  return !state_.document.notifications.isEmpty() && !player_->isPlaying();
}

bool StudioView::canExport() const {
  return !state_.document.notifications.isEmpty() && !exporting_;
}

QString StudioView::senderText() const {
  const auto index = selectedIndex();
  return index ? state_.document.notifications[*index].title : state_.draftTitle;
}

void StudioView::setSenderText(const QString& text) {
  change(
      [&text, index = selectedIndex()](State& state) {
        (index ? state.document.notifications[*index].title : state.draftTitle) = text;
      },
      u"sender "_s + state_.selectedPingId.value_or(QString()));
}

QString StudioView::messageText() const {
  const auto index = selectedIndex();
  return index ? state_.document.notifications[*index].message : state_.draftMessage;
}

void StudioView::setMessageText(const QString& text) {
  change(
      [&text, index = selectedIndex()](State& state) {
        (index ? state.document.notifications[*index].message : state.draftMessage) = text;
      },
      u"text "_s + state_.selectedPingId.value_or(QString()));
}

QString StudioView::delayText() const {
  const auto index = selectedIndex();
  return index ? secondsText(state_.document.notifications[*index].delayMs) : QString();
}

void StudioView::setDelayText(const QString& text) {
  const auto index = selectedIndex();
  const auto delayMs = readSeconds(text);
  if (!index || !delayMs) return;
  change([&](State& state) { state.document.notifications[*index].delayMs = *delayMs; },
         u"landing "_s + *state_.selectedPingId);
}

void StudioView::addPing() {
  const AppPreset& app = AppPreset::named(state_.selectedAppId);
  const PingType type = typeNamed(PingType::types(app.id), state_.selectedTypeId);
  const bool isCustom = app.id == customId;
  const bool isNamed = !state_.customAppLabel.trimmed().isEmpty();
  const QString label = !isCustom ? app.label : isNamed ? state_.customAppLabel : u"App"_s;
  const Ping ping{
      .id = newUuid(),
      .appId = app.id,
      .appLabel = label,
      .icon = isCustom ? firstGrapheme(label).toUpper() : app.icon,
      .color = app.color,
      .title = type.titleOverride.value_or(state_.draftTitle),
      .message = state_.draftMessage.isEmpty() ? type.message : state_.draftMessage,
      .delayMs = nextLandingMs(),
      .sound = {},
  };
  change([&ping](State& state) {
    state.selectedPingId.reset();
    state.document.notifications.append(ping);
  });
}

double StudioView::nextLandingMs() const {
  const QList<Ping>& pings = state_.document.notifications;
  return pings.isEmpty() ? gapMs : pings.last().delayMs + gapMs;
}

void StudioView::append(QList<Ping> pings) {
  if (pings.isEmpty()) return;
  const double laterMs = nextLandingMs() - pings.first().delayMs;
  for (Ping& ping : pings) {
    ping.id = newUuid();
    ping.delayMs = std::max(0.0, ping.delayMs + laterMs);
  }
  change([&pings](State& state) {
    state.document.notifications += pings;
    select(state, pings.last());
  });
}

void StudioView::duplicatePing(const QString& id) {
  if (const auto index = indexOf(state_.document.notifications, id))
    append({state_.document.notifications[*index]});
}

QByteArray StudioView::copiedPing(const QString& id) const {
  const auto index = indexOf(state_.document.notifications, id);
  if (!index) return {};
  SequenceDocument scene = SequenceDocument::blank();
  scene.notifications = {state_.document.notifications[*index]};
  return encodeDocument(scene);
}

void StudioView::pastePings(const QByteArray& scene) {
  try {
    append(decodeDocument(scene).notifications);
  } catch (const Error& error) {
    setError(u"The clipboard holds no pings: %1."_s.arg(error.text()));
  }
}

void StudioView::nudgePing(const QString& id, double byMs) {
  const auto index = indexOf(state_.document.notifications, id);
  if (!index) return;
  change(
      [&](State& state) {
        double& landing = state.document.notifications[*index].delayMs;
        landing = std::max(0.0, landing + byMs);
      },
      u"nudge "_s + id);
}

void StudioView::fillIn(State& state, const PingType& type) {
  const auto index = indexOf(state.document.notifications, state.selectedPingId);
  Ping* const ping = index ? &state.document.notifications[*index] : nullptr;
  if (type.titleOverride) (ping ? ping->title : state.draftTitle) = *type.titleOverride;
  (ping ? ping->message : state.draftMessage) = type.message;
}

void StudioView::applyType(const PingType& type) {
  change([&type](State& state) { fillIn(state, type); });
}

void StudioView::pickType(const PingType& type) {
  change([&type](State& state) {
    state.selectedTypeId = type.id;
    fillIn(state, type);
  });
}

void StudioView::pickApp(const QString& id) {
  change([&id](State& state) {
    state.selectedAppId = id;
    state.draftTitle = PingType::defaultSender(id);
    const PingType& type = PingType::types(id).first();
    state.selectedTypeId = type.id;
    fillIn(state, type);
  });
}

void StudioView::selectPing(const Ping& ping) {
  if (isSelected(ping.id)) return clearSelection();
  change([&ping](State& state) { select(state, ping); });
}

void StudioView::select(State& state, const Ping& ping) {
  state.selectedPingId = ping.id;
  state.selectedAppId = ping.appId;
  if (ping.appId == customId) state.customAppLabel = ping.appLabel;
  state.selectedTypeId = typeIdOf(ping);
}

void StudioView::clearSelection() {
  change([](State& state) { state.selectedPingId.reset(); });
}

void StudioView::removePing(const QString& id) {
  change([&id, wasSelected = isSelected(id)](State& state) {
    if (wasSelected) state.selectedPingId.reset();
    state.document.notifications.removeIf([&id](const Ping& ping) { return sameText(ping.id, id); });
  });
}

void StudioView::startNew() {
  SequencePlayer* const formerPlayer = player_;
  formerPlayer->stop();
  formerPlayer->disconnect(this);
  // This may be the answer to a signal of the former player, so it goes later.
  formerPlayer->deleteLater();

  const State former = std::exchange(state_, firstState());
  if (!(former == state_)) remember(former, {});
  ++photosAsked_;
  makePlayer();
  Q_EMIT playerReplaced();
  announceChanges(former);
  setError({});
}

void StudioView::syncPlayer() {
  const bool wasPlaying = player_->isPlaying();
  player_->setDocument(state_.document);
  if (wasPlaying) return;
  player_->stop();
  player_->setElapsedMs(SequencePlayer::finishedMs);
}

void StudioView::play() {
  if (!canPlay()) return;
  if (services_.tones) services_.tones->prepare();
  syncPlayer();
  // What stands on the stage before the run does not come into view by it.
  lookAtVisiblePings();
  player_->play();
  lookAtVisiblePings();
}

void StudioView::setTitle(const QString& title) {
  change([&title](State& state) { state.document.title = title; }, u"title"_s);
}

void StudioView::setCustomAppLabel(const QString& label) {
  change([&label](State& state) { state.customAppLabel = label; });
}

void StudioView::pickWallpaper(const QString& id) {
  change([&id](State& state) { state.document.wallpaper = id; });
}

void StudioView::pickPhotoChip() {
  if (!state_.document.wallpaperUrl.isEmpty() && state_.document.wallpaper != customId)
    pickWallpaper(customId);
  else
    pickCustomWallpaper();
}

void StudioView::exportMovie() {
  if (!canExport() || panelOpen_ || !services_.panels) return;
  panelOpen_ = true;
  QStringList kinds;
  for (const MovieKind& kind : movieKinds()) kinds.append(kind.name);
  const SavePanel panel{.title = u"Export notification video"_s,
                        .proposedName = slug(state_.document.title) + u".mp4"_s,
                        .kinds = kinds,
                        .suffix = u"mp4"_s};
  services_.panels->save(panel, [self = QPointer(this)](const std::optional<ChosenFile>& file) {
    if (!self) return;
    self->panelOpen_ = false;
    if (file) self->startExport(file->path, movieKinds()[file->kind].style);
  });
}

void StudioView::startExport(const QString& path, const MovieStyle& style) {
  exportStop_ = std::stop_source();
  setExporting(true);
  setError({});
  export_ = runExport(this, services_.exportMovie, state_.document, style, path, exportStop_.get_token());
}

QCoro::Task<> StudioView::runExport(QPointer<StudioView> view, ExportMovie exportMovie,
                                    SequenceDocument document, MovieStyle style, QString path,
                                    std::stop_token stop) {
  const Progress progress = [view](qint64 framesDone, qint64 frames) {
    if (view) view->setExportProgress(static_cast<double>(framesDone) / static_cast<double>(frames));
  };

  std::optional<QString> failure;
  try {
    co_await exportMovie(std::move(document), style, path, progress, stop);
  } catch (const Error& error) {
    failure = error.text();
  } catch (const std::exception&) {
    failure = u"Could not write the video file."_s;
  }

  const bool wasStopped = stop.stop_requested();
  if (!view) co_return;
  if (failure && !wasStopped) view->setError(*failure);
  if (!failure && !wasStopped && view->services_.fileManager) view->services_.fileManager->reveal(path);
  view->setExporting(false);
}

void StudioView::stopExport() {
  exportStop_.request_stop();
}

void StudioView::pickCustomWallpaper() {
  if (panelOpen_ || !services_.panels) return;
  panelOpen_ = true;
  const OpenPanel panel{
      .title = u"Choose a lock screen photo"_s,
      .kind = u"Photos"_s,
      .suffixes = services_.imageSuffixes,
      .preview = [decode = services_.decodeImage](const QString& path) {
        const std::optional<QImage> photo = decode(path);
        return photo ? photo->scaled(previewSize, Qt::KeepAspectRatio, Qt::SmoothTransformation) : QImage();
      }};
  services_.panels->open(panel, [self = QPointer(this)](const std::optional<QString>& path) {
    if (!self) return;
    self->panelOpen_ = false;
    if (path) self->usePhoto(*path);
  });
}

bool StudioView::isOffered(const QString& path) const {
  return services_.imageSuffixes.contains(QFileInfo(path).suffix(), Qt::CaseInsensitive);
}

void StudioView::usePhoto(const QString& path) {
  store([decode = services_.decodeImage, path] { return decode(path); });
}

void StudioView::usePhoto(const QImage& photo) {
  store([photo] { return std::optional(photo); });
}

void StudioView::store(std::function<std::optional<QImage>()> decode) {
  struct Copy {
    QString path, error;
  };
  const auto copied = [decode = std::move(decode), save = services_.saveWallpaper]() -> Copy {
    const std::optional<QImage> photo = decode();
    if (!photo) return {{}, u"Could not open that photo."_s};
    try {
      return {save(*photo), {}};
    } catch (const std::exception&) {
      return {{}, u"Could not save that photo."_s};
    }
  };
  inBackground(this, copied, [this, asked = ++photosAsked_](const Copy& copy) {
    if (asked != photosAsked_) return;
    if (!copy.error.isEmpty()) return setError(copy.error);
    change([&copy](State& state) {
      state.document.wallpaper = customId;
      state.document.wallpaperUrl = copy.path;
    });
  });
}

void StudioView::dismissError() {
  setError({});
}

void StudioView::setError(const QString& error) {
  if (error_ == error) return;
  error_ = error;
  Q_EMIT errorChanged();
}

void StudioView::setExporting(bool exporting) {
  if (exporting_ == exporting) return;
  exporting_ = exporting;
  Q_EMIT exportingChanged();
  setExportProgress(0);
}

void StudioView::setExportProgress(double progress) {
  if (exportProgress_ == progress) return;
  exportProgress_ = progress;
  Q_EMIT exportProgressChanged();
}

}  // namespace brisklet
