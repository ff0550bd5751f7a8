#pragma once

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <functional>

namespace brisklet {

/// How a run of a program ended.
struct Outcome {
  int status = -1;  // -1: it crashed
  QString said;     // on standard error
  QString listing;  // on standard output
};

/// A directory in which the real brisklet-render runs while something is wrong with the machine.
class FaultyMachine {
 public:
  [[nodiscard]] QString path(const QString& name = {}) const { return directory_.filePath(name); }
  void write(const QString& name, const QByteArray& bytes) const;
  [[nodiscard]] QByteArray read(const QString& name) const;
  /// All that is in the directory, hidden files included, but for the names given.
  [[nodiscard]] QStringList filesBeside(const QStringList& known) const;

  /// short.json; long.json, which changes in nearly every frame; photo.json with `photo.png` for wallpaper;
  /// and large.json with the same, of which a movie is many megabytes.
  void writeScenes() const;

  /// What happens to the process before the program begins. No memory may be allocated in it.
  using Fault = std::function<void()>;

  void start(QProcess& process, const QStringList& arguments, const Fault& fault = {}) const;
  [[nodiscard]] Outcome run(const QStringList& arguments, const Fault& fault = {}) const;
  /// Runs lines of shell, in which $RENDER is the program, in a file system name space of their own. Status
  /// 77: that is not allowed here.
  [[nodiscard]] Outcome runInOwnMounts(const QString& script) const;

  QProcessEnvironment environment = plainEnvironment();

 private:
  static QProcessEnvironment plainEnvironment();
  static Outcome outcomeOf(QProcess& process);

  QTemporaryDir directory_;
};

// Faults.

/// No file grows beyond so many bytes.
FaultyMachine::Fault fileSizeLimit(quint64 bytes);
/// The address space ends after so many MiB.
FaultyMachine::Fault memoryLimit(quint64 mebibytes);
FaultyMachine::Fault openFilesLimit(quint64 files);
/// Being root opens no door that is locked.
FaultyMachine::Fault withoutPrivileges();

}  // namespace brisklet
