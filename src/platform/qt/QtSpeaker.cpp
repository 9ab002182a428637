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

int SamplesOf(const Tone& tone) {
  return kSampleRate * std::clamp(tone.durationMs, 0, kLongestMs) / 1000;
}

void WriteTone(QDataStream& out, const Tone& tone) {
  const int samples = SamplesOf(tone);
  const double step = 2 * std::numbers::pi * tone.frequencyHz / kSampleRate;
  for (int i = 0; i < samples; ++i) {
    // A tone that starts or ends at full height clicks.
    const double fade = std::min({1.0, double(i) / kFadeSamples, double(samples - i) / kFadeSamples});
    out << static_cast<qint16>(kLoudness * fade * std::sin(step * i));
  }
}

}  // namespace

QByteArray ToneWave(const std::vector<Tone>& tones) {
  int samples = 0;
  for (const Tone& tone : tones) samples += SamplesOf(tone);
  QByteArray wave;
  QDataStream out(&wave, QIODevice::WriteOnly);
  out.setByteOrder(QDataStream::LittleEndian);
  WriteHeader(out, static_cast<quint32>(samples * kBytesPerSample));
  for (const Tone& tone : tones) WriteTone(out, tone);
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
  if (!FindPlayer()) {
    if (pacer_.Rings(clock_.TickMs(), durationMs)) QApplication::beep();
    return;
  }
  waiting_.push_back({frequencyHz, durationMs});
  if (!sounding_) Sound();
}

void QtSpeaker::Sound() {
  auto* const process = new QProcess(this);
  connect(process, &QProcess::errorOccurred, this, [this, process](QProcess::ProcessError error) {
    if (error == QProcess::FailedToStart) Sounded(process, false);
  });
  connect(process, &QProcess::finished, this, [this, process](int exitCode) { Sounded(process, exitCode == 0); });
  process->setStandardOutputFile(QProcess::nullDevice());
  process->setStandardErrorFile(QProcess::nullDevice());
  sounding_ = true;
  process->start(player_->program, player_->arguments);
  process->write(ToneWave(waiting_));
  process->closeWriteChannel();
  waiting_.clear();
}

void QtSpeaker::Sounded(QProcess* process, bool heard) {
  process->deleteLater();
  sounding_ = false;
  if (!heard) QApplication::beep();
  if (!waiting_.empty()) Sound();
}

}  // namespace hylden
