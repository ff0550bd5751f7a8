#pragma once

#include "model/catalogue.h"
#include "model/sequence_document.h"

namespace brisklet {

/// Pings of the catalogue's apps and templates by turns, landing every `intervalMs`.
inline SequenceDocument pingScene(int pings, double intervalMs) {
  SequenceDocument document = SequenceDocument::blank();
  document.dateLabel = QStringLiteral("Mon Nov 16");
  const QList<AppPreset>& apps = AppPreset::all();
  for (int i = 0; i < pings; ++i) {
    const AppPreset& app = apps.at(i % apps.size());
    const QList<PingType>& types = PingType::types(app.id);
    document.notifications.append({QString::number(i),
                                   app.id,
                                   app.label,
                                   app.icon,
                                   app.color,
                                   PingType::defaultSender(app.id),
                                   types.at(i / apps.size() % types.size()).message,
                                   intervalMs * (i + 1),
                                   {}});
  }
  return document;
}

}  // namespace brisklet
