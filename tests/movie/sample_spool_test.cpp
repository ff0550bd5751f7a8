#include "movie/sample_spool.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>
#include <algorithm>
#include <vector>

namespace brisklet {
namespace {

TEST(SampleSpool, givesBackEverySampleInOrderFromDiskAndFromMemory) {
  const QTemporaryDir folder;
  SampleSpool spool(folder.path().toStdString());
  // 30 MB in samples of all sizes, one of them larger than what stays in memory.
  std::vector<std::vector<uint8_t>> samples;
  for (size_t i = 0; i < 60; ++i)
    samples.emplace_back(i == 20 ? 6000000 : i % 3 == 0 ? 100 : 650000, static_cast<uint8_t>(i));
  // As from two encoders: a later group comes first.
  for (size_t i = 0; i < samples.size(); ++i) {
    const size_t swapped = i ^ 1;
    spool.append(samples[swapped], static_cast<int64_t>(swapped) * 3 - 1024, 1024, swapped % 7 == 0);
  }
  spool.sortByTime();
  ASSERT_EQ(spool.samples().size(), samples.size());
  for (size_t i = 0; i < samples.size(); ++i) {
    const Sample& sample = spool.samples()[i];
    EXPECT_EQ(sample.time, static_cast<int64_t>(i) * 3 - 1024);
    EXPECT_EQ(sample.bytes, samples[i].size());
    EXPECT_EQ(sample.isKey != 0, i % 7 == 0);
    const std::span<const uint8_t> bytes = spool.bytesOf(sample);
    ASSERT_TRUE(std::equal(bytes.begin(), bytes.end(), samples[i].begin(), samples[i].end())) << i;
  }
}

}  // namespace
}  // namespace brisklet
