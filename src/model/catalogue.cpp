#include "model/catalogue.h"

#include "model/text.h"

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// What the catalogue knows of one app id.
struct App {
  AppPreset preset;
  QString sender;
  QList<PingType> types;
};

const QString defaultSenderName = u"Alex"_s;

// To add an app: a row here, a tone in sound/notification_sounds.cpp, and a picture named after its id in
// resources/images.
const QList<App>& apps() {
  static const QList<App> rows{
      {.preset = {u"tiktok"_s, u"TikTok"_s, u"\u266A"_s, u"#111111"_s},
       .sender = u"@maya"_s,
       .types = {{u"like"_s, u"Video like"_s, u"liked your video."_s, {}},
                 {u"comment"_s, u"Comment"_s, u"commented: this is so real"_s, {}},
                 {u"follow"_s, u"Follow"_s, u"started following you."_s, {}},
                 {u"mention"_s, u"Mention"_s, u"mentioned you in a video."_s, {}},
                 {u"duet"_s, u"Duet"_s, u"Dueted your video."_s, {}},
                 {u"viral"_s, u"Going viral"_s, u"Your video is popular right now"_s, u"TikTok"_s}}},
      {.preset = {u"instagram"_s, u"Instagram"_s, u"\u25CE"_s, u"#e34b8b"_s},
       .sender = u"jordan"_s,
       .types = {{u"reel-like"_s, u"Reel like"_s, u"liked your Reel."_s, {}},
                 {u"photo-like"_s, u"Photo like"_s, u"liked your photo."_s, {}},
                 {u"story-like"_s, u"Story like"_s, u"liked your story."_s, {}},
                 {u"comment"_s, u"Comment"_s, u"commented: wait what"_s, {}},
                 {u"follow"_s, u"Follow"_s, u"started following you."_s, {}},
                 {u"story-reply"_s, u"Story reply"_s, u"replied to your story."_s, {}},
                 {u"mention"_s, u"Story mention"_s, u"mentioned you in their story."_s, {}}}},
      {.preset = {u"messages"_s, u"Messages"_s, u"\u2709"_s, u"#38c976"_s},
       .sender = u"Mom"_s,
       .types = {{u"text"_s, u"Text"_s, u"wait what just happened"_s, {}},
                 {u"reply"_s, u"Reply"_s, u"ok be honest though"_s, {}},
                 {u"voice"_s, u"Voice note"_s, u"Voice Message"_s, {}}}},
      {.preset = {u"snapchat"_s, u"Snapchat"_s, u"\u25CF"_s, u"#ffdd2d"_s},
       .sender = u"Jordan"_s,
       .types = {{u"snap"_s, u"Snap"_s, u"Sent you a Snap"_s, {}},
                 {u"chat"_s, u"Chat"_s, u"Sent you a Chat"_s, {}},
                 {u"add"_s, u"Added you"_s, u"Added you!"_s, {}},
                 {u"spotlight"_s, u"Spotlight"_s, u"mentioned you in Spotlight"_s, {}}}},
      {.preset = {u"cashapp"_s, u"Cash App"_s, u"$"_s, u"#00d632"_s},
       .sender = defaultSenderName,
       .types = {{u"received"_s, u"Payment"_s, u"sent you $250"_s, {}},
                 {u"request"_s, u"Request"_s, u"requested $20"_s, {}}}},
  };
  return rows;
}

/// The app that the user names; it is no row of the built-in apps.
const App& customApp() {
  static const App app{.preset = {u"custom"_s, u"Custom"_s, u"+"_s, u"#111111"_s},
                       .sender = defaultSenderName,
                       .types = {{u"note"_s, u"Notification"_s, u"sent you a notification"_s, {}},
                                 {u"mention"_s, u"Mention"_s, u"mentioned you"_s, {}},
                                 {u"alert"_s, u"Alert"_s, u"sent you an alert"_s, {}}}};
  return app;
}

const App* find(const QString& appId) {
  if (sameText(appId, customApp().preset.id)) return &customApp();
  for (const App& app : apps()) {
    if (sameText(appId, app.preset.id)) return &app;
  }
  return nullptr;
}

}  // namespace

const QList<AppPreset>& AppPreset::all() {
  static const QList<AppPreset> presets = [] {
    QList<AppPreset> list;
    for (const App& app : apps()) list.append(app.preset);
    return list;
  }();
  return presets;
}

const AppPreset& AppPreset::named(const QString& id) {
  const App* app = find(id);
  return app ? app->preset : apps().first().preset;
}

const QList<PingType>& PingType::types(const QString& appId) {
  static const QList<PingType> unknownAppTypes{{u"custom"_s, u"Custom"_s, u"sent you a notification"_s, {}}};
  const App* app = find(appId);
  return app ? app->types : unknownAppTypes;
}

QString PingType::defaultSender(const QString& appId) {
  const App* app = find(appId);
  return app ? app->sender : defaultSenderName;
}

const QList<Studio::Wallpaper>& Studio::wallpapers() {
  static const QList<Wallpaper> list{
      {u"one"_s, u"One"_s}, {u"two"_s, u"Two"_s}, {u"three"_s, u"Three"_s}, {u"four"_s, u"Four"_s}};
  return list;
}

}  // namespace brisklet
