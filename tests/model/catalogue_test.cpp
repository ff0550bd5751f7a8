#include "model/catalogue.h"

#include <gtest/gtest.h>

#include <QSet>

#include "support/printing.h"

namespace brisklet {
namespace {

TEST(Catalogue, unknownAppsFallBack) {
  EXPECT_EQ(AppPreset::named("custom").icon, "+");
  EXPECT_EQ(AppPreset::named("cashapp").label, "Cash App");
  for (const QString id : {"TikTok", "", "youtube"}) EXPECT_EQ(AppPreset::named(id).id, "tiktok");
  ASSERT_EQ(PingType::types("chat").size(), 1);
  EXPECT_EQ(PingType::types("chat")[0].id, "custom");
  EXPECT_EQ(PingType::types("chat")[0].message, "sent you a notification");
  EXPECT_EQ(PingType::types("custom").size(), 3);
  EXPECT_EQ(PingType::types("custom")[0].id, "note");
}

TEST(Catalogue, everyAppHasItsSender) {
  const QList<std::pair<QString, QString>> senders{
      {"tiktok", "@maya"}, {"instagram", "jordan"}, {"messages", "Mom"}, {"snapchat", "Jordan"},
      {"cashapp", "Alex"}, {"custom", "Alex"},      {"chat", "Alex"}};
  for (const auto& [appId, sender] : senders) EXPECT_EQ(PingType::defaultSender(appId), sender);
}

TEST(Catalogue, offersTheFirstRowsInOrder) {
  QStringList rows;
  for (const AppPreset& app : AppPreset::all()) {
    rows.append(app.id + ' ' + app.icon + ' ' + app.color);
    QSet<QString> ids;
    for (const PingType& type : PingType::types(app.id)) ids.insert(type.id);
    EXPECT_EQ(ids.size(), PingType::types(app.id).size()) << "ids are unique within " << app.id.toStdString();
  }
  // More may follow.
  EXPECT_EQ(rows.first(5), (QStringList{QString::fromUtf8("tiktok \u266A #111111"),
                                        QString::fromUtf8("instagram \u25CE #e34b8b"),
                                        QString::fromUtf8("messages \u2709 #38c976"),
                                        QString::fromUtf8("snapchat \u25CF #ffdd2d"), "cashapp $ #00d632"}));
  QStringList typeIds;
  for (const QString app : {"tiktok", "instagram", "messages", "snapchat", "cashapp"}) {
    for (const PingType& type : PingType::types(app)) typeIds.append(type.id);
  }
  EXPECT_EQ(
      typeIds.join(' '),
      "like comment follow mention duet viral reel-like photo-like story-like comment follow story-reply "
      "mention text reply voice snap chat add spotlight received request");
  EXPECT_EQ(PingType::types("tiktok")[5].titleOverride, "TikTok");
  ASSERT_GE(Studio::wallpapers().size(), 4);
  EXPECT_EQ(Studio::wallpapers()[3], (Studio::Wallpaper{"four", "Four"}));
}

}  // namespace
}  // namespace brisklet
