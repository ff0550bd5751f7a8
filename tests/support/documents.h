#pragma once

#include "model/catalogue.h"
#include "model/sequence_document.h"

namespace brisklet {

/// When a ping of a test's document lands, and its app.
struct TestPing {
  TestPing(double ms) : delayMs(ms) {}
  TestPing(QString app, double ms) : appId(std::move(app)), delayMs(ms) {}

  QString appId = QStringLiteral("messages");
  double delayMs = 0;
};

/// A document of these pings. Its labels are fixed, and the ids count from 0.
inline SequenceDocument documentOf(const QList<TestPing>& pings) {
  SequenceDocument document = SequenceDocument::blank();
  document.dateLabel = QStringLiteral("Mon Nov 16");
  for (const auto& [appId, delayMs] : pings) {
    const AppPreset& app = AppPreset::named(appId);
    document.notifications.append({QString::number(document.notifications.size()),
                                   appId,
                                   app.label,
                                   app.icon,
                                   app.color,
                                   QStringLiteral("Sender"),
                                   QStringLiteral("Message"),
                                   delayMs,
                                   {}});
  }
  return document;
}

}  // namespace brisklet
