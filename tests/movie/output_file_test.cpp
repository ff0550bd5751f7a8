#include "base/output_file.h"

#include "support/printing.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace brisklet {
namespace {

struct OutputFileTest : testing::Test {
  QTemporaryDir folder;

  QString at(const QString& name) const { return folder.path() + '/' + name; }

  QString contents(const QString& name) const {
    QFile file(at(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : "none";
  }

  static void write(const QString& path, QByteArrayView bytes) {
    OutputFile file(path);
    file.append(bytes.first(1));
    file.append(bytes.sliced(1));
    file.commit();
  }

  QStringList entries() const {
    return QDir(folder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
  }
};

TEST_F(OutputFileTest, aFileIsThereWholeOrNotAtAllAndKeepsThePermissionsOfTheFormer) {
  const QString longest(255, 'x');
  for (const QString& name : {QString("file"), longest}) {
    write(at(name), "old");
    ASSERT_EQ(::chmod(QFile::encodeName(at(name)).constData(), 0640), 0);
    {
      OutputFile dropped(at(name));
      dropped.append("half");
      EXPECT_EQ(contents(name), "old");
    }
    OutputFile file(at(name));
    file.removeFormer();
    EXPECT_EQ(entries(), QStringList());
    file.append("new");
    write(at(name), "another meanwhile");
    file.commit();
    EXPECT_EQ(contents(name), "new");
    EXPECT_EQ(QFileInfo(at(name)).permissions() & 0x7777, 0x6640);
    EXPECT_EQ(entries(), QStringList(name));
    QFile::remove(at(name));
  }
}

TEST_F(OutputFileTest, linksAreFollowedAlsoToAFileThatIsNotThereYet) {
  QDir(folder.path()).mkdir("deep");
  QFile::link("deep/target", at("link"));
  QFile::link(at("link"), at("link to the link"));
  for (const char* text : {"first", "second"}) {
    write(at("link to the link"), text);
    EXPECT_EQ(contents("deep/target"), text);
  }
  EXPECT_TRUE(QFileInfo(at("link")).isSymLink());
  EXPECT_EQ(outputPlace(at("deep/../link")), outputPlace(at("deep/target")));
}

TEST_F(OutputFileTest, whatCannotBeReplacedIsNamed) {
  QDir(folder.path()).mkdir("folder");
  write(at("file"), "old");
  ASSERT_EQ(::mkfifo(QFile::encodeName(at("pipe")).constData(), 0666), 0);
  QFile::link("circle", at("circle"));
  const std::pair<QString, QString> rows[]{
      {"folder", "it is a directory"},
      {"folder/", "it is a directory"},
      {"pipe", "it is not a regular file"},
      {"../../../../../../../../dev/full", "it is not a regular file"},
      {"nowhere/", "it is a folder that is not there"},
      {"nowhere/file", "its folder does not exist"},
      {"file/", "a part of its path is not a folder"},
      {"circle", "its path leads in a circle of links"},
      {QString(256, 'x'), "the name is too long"},
  };
  for (const auto& [name, cause] : rows) {
    try {
      write(at(name), "new");
      ADD_FAILURE() << name.toStdString();
    } catch (const Error& error) {
      EXPECT_EQ(error.text(), QString("Could not write \"%1\": %2.").arg(at(name), cause));
    }
  }
  EXPECT_EQ(contents("file"), "old");
}

}  // namespace
}  // namespace brisklet
