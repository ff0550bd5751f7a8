#include "model/catalogue.h"

#include <gtest/gtest.h>

#include <QSet>

#include "support/printing.h"

namespace brisklet {
namespace {

TEST(Catalogue, appsHaveTheirLooksSendersAndTemplatesAndUnknownOnesFallBack) {
  const QList<std::pair<QString, QString>> rows{
      {"tiktok", "tiktok TikTok \u266A #111111 @maya: like comment follow mention duet viral"},
      {"instagram",
       "instagram Instagram \u25CE #e34b8b jordan: "
       "reel-like photo-like story-like comment follow story-reply mention"},
      {"messages", "messages Messages \u2709 #38c976 Mom: text reply voice"},
      {"snapchat", "snapchat Snapchat \u25CF #ffdd2d Jordan: snap chat add spotlight"},
      {"cashapp", "cashapp Cash App $ #00d632 Alex: received request"},
      {"custom", "custom Custom + #111111 Alex: note mention alert"},
      {"TikTok", "tiktok TikTok \u266A #111111 Alex: custom"},
      {"", "tiktok TikTok \u266A #111111 Alex: custom"},
  };
  for (const auto& [id, row] : rows) {
    const AppPreset& app = AppPreset::named(id);
    QStringList words{app.id, app.label, app.icon, app.color, PingType::defaultSender(id) + ':'};
    for (const PingType& type : PingType::types(id)) words.append(type.id);
    EXPECT_EQ(words.join(' '), row);
  }
  EXPECT_EQ(PingType::types("chat")[0].message, "sent you a notification");
  EXPECT_EQ(PingType::types("tiktok")[5].titleOverride, "TikTok");
}

TEST(Catalogue, offersTheFirstRowsInOrderAndMoreMayFollow) {
  QStringList apps;
  for (const AppPreset& app : AppPreset::all()) {
    apps.append(app.id);
    QSet<QString> ids;
    for (const PingType& type : PingType::types(app.id)) ids.insert(type.id);
    EXPECT_EQ(ids.size(), PingType::types(app.id).size()) << "ids are unique within " << app.id.toStdString();
  }
  EXPECT_EQ(apps.first(5), (QStringList{"tiktok", "instagram", "messages", "snapchat", "cashapp"}));
  ASSERT_GE(Studio::wallpapers().size(), 4);
  EXPECT_EQ(Studio::wallpapers()[3], (Studio::Wallpaper{"four", "Four"}));
}

}  // namespace
}  // namespace brisklet
