#pragma once

#include "lockscreen/kept.h"
#include "model/sequence_document.h"

#include <QDateTime>
#include <QImage>
#include <QSize>
#include <QString>
#include <optional>
#include <utility>

namespace brisklet {

/// The picture scaled uniformly to cover `pixels`, centred and cut off at the edges.
[[nodiscard]] QImage photoFill(const QImage& photo, const QSize& pixels);

/// Whether a photo whose file changes, or goes, becomes another wallpaper.
enum class PhotoChanges { Followed, Ignored };

/// Holds the wallpaper of the document last asked for, at the size last asked for. A custom photo is looked
/// at every time, unless its changes are ignored, and read again only when its path, size or time of change
/// differs.
class WallpaperSource {
 public:
  /// The document's wallpaper filling `pixels`: its photo or built-in picture, built-in "one" where there is
  /// no such picture or no readable photo, and plain "#9bb4be" without even that. Never fails. The same
  /// image (equal `cacheKey()`) until something changes.
  [[nodiscard]] const QImage& filled(const SequenceDocument& document, const QSize& pixels,
                                     PhotoChanges changes = PhotoChanges::Followed);

  /// Looks at the photo again next time, even if its changes are ignored.
  void expectOtherPhoto() { asked_.reset(); }

  /// The picture last asked for.
  [[nodiscard]] const QImage& last() const { return image_.last(); }

 private:
  /// What decides the picture. For a built-in wallpaper only `name` is set.
  struct Origin {
    QString name;
    QString path;
    qint64 bytes = -1;
    QDateTime changed;

    friend bool operator==(const Origin&, const Origin&) = default;
  };
  [[nodiscard]] static Origin originOf(const SequenceDocument& document);
  [[nodiscard]] static QImage read(const Origin& origin, const QSize& pixels);

  /// What the document said, and what it meant then.
  std::optional<std::pair<QString, QString>> asked_;
  Origin origin_;
  /// The picture at the size of a movie's frame, from which smaller ones are made.
  Kept<Origin, QImage> print_;
  Kept<std::pair<Origin, QSize>, QImage> image_;
};

}  // namespace brisklet
