#include "platform/qt/QtSpeaker.h"

#include <QApplication>
#include <QDataStream>
#include <QIODevice>
#include <QProcess>
#include <QStandardPaths>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace hylden {

namespace {

constexpr int kSampleRate = 22050;
constexpr int kBytesPerSample = 2;
constexpr double kLoudness = 9000;
constexpr int kFadeSamples = kSampleRate / 200;
constexpr int kLongestMs = 5000;

void WriteHeader(QDataStream& out, quint32 dataBytes) {
  out.writeRawData("RIFF", 4);
  out << quint32(36 + dataBytes);
  out.writeRawData("WAVEfmt ", 8);
  out << quint32(16) << quint16(1) << quint16(1) << quint32(kSampleRate) << quint32(kSampleRate * kBytesPerSample)
      << quint16(kBytesPerSample) << quint16(8 * kBytesPerSample);
  out.writeRawData("data", 4);
  out << dataBytes;
}

}  // namespace

QByteArray ToneWave(int frequencyHz, int durationMs) {
  const int samples = kSampleRate * std::clamp(durationMs, 0, kLongestMs) / 1000;
  QByteArray wave;
  QDataStream out(&wave, QIODevice::WriteOnly);
  out.setByteOrder(QDataStream::LittleEndian);
  WriteHeader(out, static_cast<quint32>(samples * kBytesPerSample));
  const double step = 2 * std::numbers::pi * frequencyHz / kSampleRate;
  for (int i = 0; i < samples; ++i) {
    // A tone that starts or ends at full height clicks.
    const double fade = std::min({1.0, double(i) / kFadeSamples, double(samples - i) / kFadeSamples});
    out << static_cast<qint16>(kLoudness * fade * std::sin(step * i));
  }
  return wave;
}

const std::optional<QtSpeaker::Player>& QtSpeaker::FindPlayer() {
  if (searched_) return player_;
  searched_ = true;
  const Player known[] = {
      {QStringLiteral("pw-play"), {QStringLiteral("-")}},
      {QStringLiteral("paplay"), {QStringLiteral("/dev/stdin")}},
      {QStringLiteral("aplay"), {QStringLiteral("-q"), QStringLiteral("-")}},
  };
  for (const Player& player : known) {
    const QString path = QStandardPaths::findExecutable(player.program);
    if (path.isEmpty()) continue;
    player_ = Player{path, player.arguments};
    break;
  }
  return player_;
}

void QtSpeaker::Beep(int frequencyHz, int durationMs) {
  const std::optional<Player>& player = FindPlayer();
  if (!player) {
    QApplication::beep();
    return;
  }
  auto* const process = new QProcess(this);
  connect(process, &QProcess::errorOccurred, process, [process](QProcess::ProcessError error) {
    if (error != QProcess::FailedToStart) return;
    QApplication::beep();
    process->deleteLater();
  });
  connect(process, &QProcess::finished, process, [process](int exitCode) {
    if (exitCode != 0) QApplication::beep();
    process->deleteLater();
  });
  process->setStandardOutputFile(QProcess::nullDevice());
  process->setStandardErrorFile(QProcess::nullDevice());
  process->start(player->program, player->arguments);
  process->write(ToneWave(frequencyHz, durationMs));
  process->closeWriteChannel();
}

}  // namespace hylden
