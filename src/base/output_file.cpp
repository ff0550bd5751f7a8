#include "base/output_file.h"

#include "base/system_cause.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QFile>
#include <QUuid>
#include <cerrno>
#include <cstdio>
#include <string>
#include <system_error>
#include <utility>

using namespace Qt::StringLiterals;

namespace fs = std::filesystem;

namespace brisklet {

namespace {

/// Short, as the name of the file itself may be as long as a name can be.
fs::path newHiddenName(const fs::path& folder) {
  return folder / (".brisklet-" + QUuid::createUuid().toString(QUuid::Id128).left(12).toStdString());
}

}  // namespace

Error couldNotWrite(const QString& path, const QString& cause) {
  return Error(u"Could not write \"%1\": %2."_s.arg(path, cause));
}

fs::path outputPlace(const QString& path) {
  fs::path place = QFile::encodeName(path).toStdString();
  const auto refuse = [&path](const QString& cause) { throw couldNotWrite(path, cause); };
  std::error_code failure;
  const fs::file_type type = fs::status(place, failure).type();
  if (type == fs::file_type::directory) refuse(systemCause(EISDIR));
  if (type == fs::file_type::none) refuse(systemCause(failure.value()));
  if (type != fs::file_type::regular && type != fs::file_type::not_found)
    refuse(u"it is not a regular file"_s);
  while (fs::is_symlink(place)) place = place.parent_path() / fs::read_symlink(place);
  if (!place.has_filename())
    refuse(failure.value() == ENOTDIR ? systemCause(ENOTDIR) : u"it is a folder that is not there"_s);
  place = fs::weakly_canonical(fs::absolute(place), failure);
  if (failure) refuse(systemCause(failure.value()));
  return place;
}

UniqueFd makeHiddenFile(const fs::path& folder, fs::path& hiddenName) {
  // Such a file gets its name through /proc.
  if (::access("/proc/self/fd", X_OK) == 0) {
    if (UniqueFd file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666)); file) return file;
  }
  fs::path name = newHiddenName(folder);
  UniqueFd file(::open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666));
  if (file) hiddenName = std::move(name);
  return file;
}

OutputFile::OutputFile(const QString& path) : path_(path), place_(outputPlace(path)) {
  fd_ = makeHiddenFile(folder(), hiddenName_);
  if (!fd_) throw couldNotWrite(path_, systemCause(errno));
  struct stat former = {};
  if (::stat(place_.c_str(), &former) == 0) ::fchmod(fd_.get(), former.st_mode & 0777);
}

OutputFile::OutputFile(OutputFile&& other) noexcept
    : path_(std::move(other.path_)),
      place_(std::move(other.place_)),
      hiddenName_(std::exchange(other.hiddenName_, {})),
      fd_(std::move(other.fd_)),
      bytes_(other.bytes_) {}

OutputFile::~OutputFile() {
  if (!hiddenName_.empty()) ::unlink(hiddenName_.c_str());
}

void OutputFile::removeFormer() const {
  if (::unlink(place_.c_str()) != 0 && errno != ENOENT)
    throw Error(u"Could not replace \"%1\": %2."_s.arg(path_, systemCause(errno)));
}

void OutputFile::append(QByteArrayView bytes) {
  const std::span data(reinterpret_cast<const uint8_t*>(bytes.data()), static_cast<size_t>(bytes.size()));
  if (const int failure = writeAt(fd_.get(), data, bytes_)) throw couldNotWrite(path_, systemCause(failure));
  bytes_ += bytes.size();
}

void OutputFile::commit() {
  const auto require = [this](bool succeeded) {
    if (!succeeded) throw couldNotWrite(path_, systemCause(errno));
  };
  // Some file systems report only now that they could not keep what was written.
  require(::fsync(fd_.get()) == 0 || errno == EINVAL);
  if (hiddenName_.empty()) {
    const std::string self = "/proc/self/fd/" + std::to_string(fd_.get());
    const auto linkTo = [&self](const fs::path& name) {
      return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    };
    if (linkTo(place_)) return;
    require(errno == EEXIST);
    // A link cannot replace a file, but a name can.
    fs::path name = newHiddenName(folder());
    require(linkTo(name));
    hiddenName_ = std::move(name);
  }
  require(std::rename(hiddenName_.c_str(), place_.c_str()) == 0);
  hiddenName_.clear();
}

}  // namespace brisklet
