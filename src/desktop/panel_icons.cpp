#include "desktop/panel_icons.h"

#include "base/background.h"

#include <QAbstractItemView>
#include <QCache>
#include <QFileIconProvider>
#include <QIconEngine>
#include <QMimeDatabase>
#include <QPainter>
#include <memory>
#include <utility>

namespace brisklet {

namespace {

constexpr int previewSide = 40;  // points
constexpr int mostPreviews = 1000;

/// The pictures of one panel's files, each made when it is first to be seen.
class Previews : public QObject {
 public:
  Previews(QFileDialog* dialog, std::function<QImage(const QString&)> make)
      : QObject(dialog), dialog_(dialog), make_(std::move(make)) {}

  /// Null until it is there.
  QImage of(const QString& path) {
    if (const QImage* made = made_.object(path)) return *made;
    made_.insert(path, new QImage);
    const auto make = [make = make_, path, open = std::weak_ptr(open_)] {
      return open.expired() ? QImage() : make(path);
    };
    const auto show = [this, path](const QImage& preview) {
      if (preview.isNull()) return;
      made_.insert(path, new QImage(preview));
      for (QAbstractItemView* view : dialog_->findChildren<QAbstractItemView*>()) view->viewport()->update();
    };
    // After what somebody waits for.
    inBackground(this, make, show, -1);
    return {};
  }

 private:
  QFileDialog* dialog_;
  std::function<QImage(const QString&)> make_;
  QCache<QString, QImage> made_{mostPreviews};
  std::shared_ptr<bool> open_ = std::make_shared<bool>(true);
};

class PreviewEngine : public QIconEngine {
 public:
  PreviewEngine(QString path, QIcon otherwise, QPointer<Previews> previews)
      : path_(std::move(path)), otherwise_(std::move(otherwise)), previews_(std::move(previews)) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
    const QImage preview = previews_ ? previews_->of(path_) : QImage();
    if (preview.isNull()) return otherwise_.paint(painter, rect, Qt::AlignCenter, mode, state);
    QRect place(QPoint(), preview.size().scaled(rect.size(), Qt::KeepAspectRatio));
    place.moveCenter(rect.center());
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(place, preview);
  }
  QIconEngine* clone() const override { return new PreviewEngine(path_, otherwise_, previews_); }

 private:
  QString path_;
  QIcon otherwise_;
  QPointer<Previews> previews_;
};

class PanelIcons : public QObject, public QFileIconProvider {
 public:
  PanelIcons(QFileDialog* dialog, QStringList suffixes, Previews* previews)
      : QObject(dialog), suffixes_(std::move(suffixes)), previews_(previews) {}

  using QFileIconProvider::icon;
  QIcon icon(const QFileInfo& info) const override {
    if (info.isDir()) return icon(Folder);
    if (!suffixes_.contains(info.suffix(), Qt::CaseInsensitive)) return icon(File);
    return QIcon(new PreviewEngine(info.absoluteFilePath(), icon(File), previews_));
  }
  QString type(const QFileInfo& info) const override {
    return QMimeDatabase().mimeTypeForFile(info, QMimeDatabase::MatchExtension).comment();
  }

 private:
  QStringList suffixes_;
  QPointer<Previews> previews_;
};

}  // namespace

void showPreviews(QFileDialog& dialog, const QStringList& suffixes,
                  const std::function<QImage(const QString& path)>& preview) {
  auto* previews = preview ? new Previews(&dialog, preview) : nullptr;
  dialog.setIconProvider(new PanelIcons(&dialog, suffixes, previews));
  if (!previews) return;
  for (const char* name : {"treeView", "listView"})
    if (auto* view = dialog.findChild<QAbstractItemView*>(QLatin1String(name)))
      view->setIconSize({previewSide, previewSide});
}

}  // namespace brisklet
