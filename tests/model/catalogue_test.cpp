#include "model/catalogue.h"

#include "support/printing.h"

#include <gtest/gtest.h>

#include <QCryptographicHash>

namespace brisklet {
namespace {

TEST(Catalogue, saysItsTextsToTheLetterAndUnknownAppsFallBack) {
  QStringList ids;
  for (const AppPreset& app : AppPreset::all().first(5)) ids.append(app.id);
  EXPECT_EQ(ids.join(' '), "tiktok instagram messages snapchat cashapp") << "more may follow";
  QString texts;
  for (const QString& id : ids + QStringList{"custom", "TikTok", ""}) {
    const AppPreset& app = AppPreset::named(id);
    texts +=
        QStringList{id, app.id, app.label, app.icon, app.color, PingType::defaultSender(id)}.join('|') + '\n';
    for (const PingType& type : PingType::types(id))
      texts += "  " +
               QStringList{type.id, type.label, type.message, type.titleOverride.value_or("")}.join('|') +
               '\n';
  }
  for (const Studio::Wallpaper& each : Studio::wallpapers().first(4))
    texts += each.id + '|' + each.label + '\n';
  EXPECT_EQ(QCryptographicHash::hash(texts.toUtf8(), QCryptographicHash::Md5).toHex(),
            "51b8e29aef51ec81e2b086361492446e")
      << texts.toStdString();
}

}  // namespace
}  // namespace brisklet
