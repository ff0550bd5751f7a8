#include "faults/faulty_machine.h"

#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QImage>

#include "support/printing.h"

namespace brisklet {

namespace {

void limit(__rlimit_resource resource, quint64 most) {
  const rlimit value{most, most};
  setrlimit(resource, &value);
}

}  // namespace

QProcessEnvironment FaultyMachine::plainEnvironment() {
  QProcessEnvironment environment;
  environment.insert("PATH", "/usr/bin:/bin:/usr/sbin:/sbin");
  environment.insert("RENDER", BRISKLET_RENDER);
  environment.insert("TZ", "UTC");
  return environment;
}

void FaultyMachine::write(const QString& name, const QByteArray& bytes) const {
  QFile file(path(name));
  EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

QByteArray FaultyMachine::read(const QString& name) const {
  QFile file(path(name));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList FaultyMachine::filesBeside(const QStringList& known) const {
  QStringList files;
  for (const QString& name :
       QDir(path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot))
    if (!known.contains(name)) files.append(name);
  return files;
}

void FaultyMachine::writeScenes() const {
  write("short.json", R"({"dateLabel": "Mon Nov 16", "notifications": [{"appId": "snapchat", "delayMs": 100},
                          {"appId": "messages", "title": "Mom 👋", "delayMs": 400}]})");
  QByteArray pings;
  for (int i = 0; i < 300; ++i)
    pings +=
        R"({"title": ")" + QByteArray::number(i) + R"(", "delayMs": )" + QByteArray::number(i * 40) + "},";
  write("long.json", R"({"dateLabel": "Mon Nov 16", "notifications": [)" + pings + "{}]}");
  // Noise, of which a frame takes megabytes.
  QImage photo(585, 1266, QImage::Format_RGB32);
  quint32 state = 1;
  for (int y = 0; y < photo.height(); ++y) {
    for (int x = 0; x < photo.width(); ++x) {
      state = state * 1664525 + 1013904223;
      photo.setPixel(x, y, 0xff000000 | state >> 8);
    }
  }
  EXPECT_TRUE(photo.save(path("photo.png")));
  const QByteArray photoScene =
      R"({"dateLabel": "Mon Nov 16", "wallpaper": "custom", "wallpaperUrl": "photo.png",
                                    "notifications": [{"delayMs": )";
  write("photo.json", photoScene + "100}]}");
  write("large.json", photoScene + "12000}]}");
}

void FaultyMachine::start(QProcess& process, const QStringList& arguments, const Fault& fault) const {
  process.setProcessEnvironment(environment);
  process.setWorkingDirectory(path());
  if (fault) process.setChildProcessModifier(fault);
  process.start(BRISKLET_RENDER, arguments);
}

Outcome FaultyMachine::run(const QStringList& arguments, const Fault& fault) const {
  QProcess process;
  start(process, arguments, fault);
  return outcomeOf(process);
}

Outcome FaultyMachine::runInOwnMounts(const QString& script) const {
  QProcess process;
  process.setProcessEnvironment(environment);
  process.setWorkingDirectory(path());
  process.start("/bin/sh",
                {"-c", "unshare --mount true 2>/dev/null || exit 77; exec unshare --mount sh -c \"$1\"", "sh",
                 "set -u\n" + script});
  return outcomeOf(process);
}

Outcome FaultyMachine::outcomeOf(QProcess& process) {
  EXPECT_TRUE(process.waitForFinished(300000)) << "it hangs";
  const bool crashed = process.exitStatus() == QProcess::CrashExit || process.exitCode() > 128;
  return {crashed ? -1 : process.exitCode(), QString::fromUtf8(process.readAllStandardError()),
          QString::fromUtf8(process.readAllStandardOutput())};
}

FaultyMachine::Fault fileSizeLimit(quint64 bytes) {
  return [bytes] { limit(RLIMIT_FSIZE, bytes); };
}

FaultyMachine::Fault memoryLimit(quint64 mebibytes) {
  return [mebibytes] { limit(RLIMIT_AS, mebibytes << 20); };
}

FaultyMachine::Fault openFilesLimit(quint64 files) {
  return [files] { limit(RLIMIT_NOFILE, files); };
}

FaultyMachine::Fault withoutPrivileges() {
  return [] {
    for (const unsigned long capability : {CAP_DAC_OVERRIDE, CAP_DAC_READ_SEARCH, CAP_FOWNER})
      prctl(PR_CAPBSET_DROP, capability, 0, 0, 0);
  };
}

}  // namespace brisklet
