#pragma once

#include "base/error.h"
#include "model/movie_style.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace brisklet {

/// The command line does not say what to do.
class UsageError : public Error {
 public:
  using Error::Error;
};

/// What one scene file is made into. Paths are empty where an output is not asked for.
struct RenderJob {
  /// "-" is standard input.
  QString scene;
  QString movie;
  QString still;
  /// The moment of the still in milliseconds; positive infinity is the finished sequence.
  double stillMs = 0;
  QString soundtrack;
  /// A movie that is there and not older than its scene and its photo is left alone.
  bool keepsMovie = false;
  /// Of the movie and the still.
  MovieStyle style;

  /// The outputs asked for, in the order in which they are made.
  [[nodiscard]] QStringList outputs() const;
};

struct RenderOptions {
  QList<RenderJob> jobs;
  /// The directory of `--into`, made if it is missing; empty without it.
  QString into;
  /// How many movies of `--into` are made at once.
  int workers = 1;
  bool quiet = false;
  bool verbose = false;
  bool help = false;
  bool version = false;
};

/// Reads the arguments behind the program's name. Throws `UsageError`.
[[nodiscard]] RenderOptions parseRenderOptions(const QStringList& arguments);

/// What `--help` says.
[[nodiscard]] QString renderUsage();

}  // namespace brisklet
