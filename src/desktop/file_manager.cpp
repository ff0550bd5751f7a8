#include "desktop/file_manager.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

/// A file manager that the call has to start first takes its time; one that hangs does not answer.
constexpr int patienceMs = 10000;

void openFolder(const QString& path) {
  QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).absolutePath()));
}

class DesktopFileManager final : public FileManager {
 public:
  void reveal(const QString& path) override {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return openFolder(path);
    QDBusMessage call =
        QDBusMessage::createMethodCall(u"org.freedesktop.FileManager1"_s, u"/org/freedesktop/FileManager1"_s,
                                       u"org.freedesktop.FileManager1"_s, u"ShowItems"_s);
    const QUrl url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    call << QStringList{QString::fromLatin1(url.toEncoded())} << QString();
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, patienceMs), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, path] {
      watcher->deleteLater();
      if (watcher->isError()) openFolder(path);
    });
  }
};

}  // namespace

std::unique_ptr<FileManager> makeFileManager() {
  return std::make_unique<DesktopFileManager>();
}

}  // namespace brisklet
