#pragma once

#include <QLatin1StringView>
#include <QList>
#include <QString>
#include <optional>

namespace brisklet {

/// The id of what is the user's own: an app that they named, a wallpaper that is their photo.
inline constexpr QLatin1StringView customId("custom");

/// A built-in app from which pings are made.
struct AppPreset {
  QString id;
  QString label;
  QString icon;
  /// "#" and six hexadecimal digits.
  QString color;

  /// The built-in apps, in the order in which the studio offers them.
  [[nodiscard]] static const QList<AppPreset>& all();

  /// The app of this id; the custom preset for "custom", which is not in `all()`; the first app otherwise.
  [[nodiscard]] static const AppPreset& named(const QString& id);

  [[nodiscard]] friend bool operator==(const AppPreset&, const AppPreset&) = default;
};

/// A message template of an app.
struct PingType {
  /// Unique among the templates of one app.
  QString id;
  QString label;
  QString message;
  /// The title of pings made from this template, in place of the sender.
  std::optional<QString> titleOverride;

  /// The templates of an app, the default one first; never empty.
  [[nodiscard]] static const QList<PingType>& types(const QString& appId);

  /// The sender that the studio fills in when the app is picked.
  [[nodiscard]] static QString defaultSender(const QString& appId);

  [[nodiscard]] friend bool operator==(const PingType&, const PingType&) = default;
};

namespace Studio {

struct Wallpaper {
  /// Also the name of its picture.
  QString id;
  QString label;

  [[nodiscard]] friend bool operator==(const Wallpaper&, const Wallpaper&) = default;
};

/// The built-in wallpapers, in the order in which the studio offers them.
[[nodiscard]] const QList<Wallpaper>& wallpapers();

}  // namespace Studio

}  // namespace brisklet
