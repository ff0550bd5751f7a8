#include "sound/wav_file.h"

#include "base/error.h"
#include "sound/notification_sounds.h"

#include <QtEndian>
#include <limits>

using namespace Qt::StringLiterals;

namespace brisklet {

namespace {

template <typename Integer>
void append(QByteArray& bytes, Integer value) {
  const Integer littleEndian = qToLittleEndian(value);
  bytes.append(reinterpret_cast<const char*>(&littleEndian), sizeof littleEndian);
}

}  // namespace

QByteArray wavHeader(qint64 pcmBytes, int channels) {
  constexpr quint32 headerAfterSize = 36;
  if (pcmBytes > std::numeric_limits<quint32>::max() - headerAfterSize)
    throw Error(u"the soundtrack is too long for a WAV file, which ends at 4 GiB"_s);
  const auto dataBytes = static_cast<quint32>(pcmBytes);
  const auto frameBytes = static_cast<quint16>(channels * 2);

  QByteArray file;
  file.append("RIFF");
  append<quint32>(file, headerAfterSize + dataBytes);
  file.append("WAVEfmt ");
  append<quint32>(file, 16);
  append<quint16>(file, 1);  // integer PCM
  append<quint16>(file, static_cast<quint16>(channels));
  append<quint32>(file, NotificationSounds::sampleRate);
  append<quint32>(file, NotificationSounds::sampleRate * quint32{frameBytes});
  append<quint16>(file, frameBytes);
  append<quint16>(file, 16);
  file.append("data");
  append<quint32>(file, dataBytes);
  return file;
}

QByteArray wavFile(const QByteArray& pcm, int channels) {
  return wavHeader(pcm.size(), channels) + pcm;
}

}  // namespace brisklet
