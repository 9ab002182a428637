#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>

#include "platform/Speaker.h"

namespace hylden {

/// Tones through the sound system's own player, which runs on its own; without one, or when it fails, the bell.
class QtSpeaker : public QObject, public Speaker {
 public:
  void Beep(int frequencyHz, int durationMs) override;

 private:
  struct Player {
    QString program;
    QStringList arguments;
  };
  const std::optional<Player>& FindPlayer();

  bool searched_ = false;
  std::optional<Player> player_;
};

/// A sine tone as a WAV file (mono, 16 bits, 22050 Hz) with soft ends. The duration is held to 5 s.
QByteArray ToneWave(int frequencyHz, int durationMs);

}  // namespace hylden
