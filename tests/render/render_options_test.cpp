#include "render/render_options.h"

#include "support/printing.h"

#include <gtest/gtest.h>

#include <limits>

namespace brisklet {
namespace {

TEST(RenderOptions, aStillIsOfTheEndUnlessToldOtherwise) {
  const auto momentOf = [](const QStringList& more) {
    return parseRenderOptions(QStringList{"scene.json", "--still", "a.png"} + more).jobs[0].stillMs;
  };
  EXPECT_EQ(momentOf({"--at", "1.5"}), 1500);
  EXPECT_EQ(momentOf({}), std::numeric_limits<double>::infinity());
  EXPECT_EQ(momentOf({"--at", "end"}), momentOf({}));
}

TEST(RenderOptions, intoNamesAMovieAfterEachScene) {
  const RenderOptions options = parseRenderOptions({"--into", "out", "a/one.json", "two.brisklet.json"});
  ASSERT_EQ(options.jobs.size(), 2);
  EXPECT_EQ(options.into, "out");
  EXPECT_EQ(options.jobs[0].movie, "out/one.mp4");
  EXPECT_EQ(options.jobs[1].movie, "out/two.brisklet.mp4");
  EXPECT_EQ(parseRenderOptions({"--into", ":out", ":a.json"}).jobs[0].movie, "./:out/./:a.mp4");
}

TEST(RenderOptions, wrongUseIsNamed) {
  const struct {
    QStringList arguments;
    QString says;
  } rows[]{
      {{}, "no scene file"},
      {{"a.json"}, "nothing to make"},
      {{"a.json", "--at", "1"}, "--at goes with --still"},
      {{"a.json", "--still", "a.png", "--at", "soon"}, "\"soon\""},
      {{"a.json", "--still", "a.png", "--at=-1"}, "\"-1\""},
      {{"a.json", "--still", "a.png", "--still", "b.png"}, "more than once"},
      {{"a.json", "--fast", "b.mp4"}, "fast"},
      {{"a.json", "b.mp4", "c.mp4"}, "--into"},
      {{"a.json", ""}, "empty"},
      {{"a.json", "-"}, "standard output"},
      {{"--into", "out"}, "at least one scene"},
      {{"--into", "out", "--jobs", "0", "a.json"}, "--jobs takes"},
      {{"a.json", "b.mp4", "--keep"}, "go with --into"},
      {{"a.json", "b.mp4", "--page", "1080"}, "--page takes"},
      {{"a.json", "b.mp4", "--page", "1081x1920"}, "--page takes"},
      {{"--into", "out", "-"}, "\"-\""},
      {{"--into", "out", "a/x.json", "b/x.json"}, "both become"},
      {{"--into", "out", "a.json", "--still", "a.png"}, "--into makes movies only"},
  };
  for (const auto& row : rows) {
    try {
      (void)parseRenderOptions(row.arguments);
      ADD_FAILURE() << row.arguments.join(' ').toStdString();
    } catch (const UsageError& error) {
      EXPECT_TRUE(error.text().contains(row.says)) << error.text().toStdString();
    }
  }
}

}  // namespace
}  // namespace brisklet
