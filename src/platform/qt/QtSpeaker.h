#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

#include "platform/BellPacer.h"
#include "platform/Speaker.h"
#include "platform/console/ConsoleClock.h"

class QProcess;

namespace hylden {

/// A tone to be heard.
struct Tone {
  int frequencyHz = 0;
  int durationMs = 0;
};

/// Tones through the sound system's own player, which runs on its own, one after the other; without a player, or when
/// it fails, the bell, once for tones in a row.
class QtSpeaker : public QObject, public Speaker {
 public:
  void Beep(int frequencyHz, int durationMs) override;

 private:
  struct Player {
    QString program;
    QStringList arguments;
  };
  const std::optional<Player>& FindPlayer();
  /// Plays all that waits as one piece.
  void Sound();
  void Sounded(QProcess* process, bool heard);

  ConsoleClock clock_;
  BellPacer pacer_;
  std::vector<Tone> waiting_;
  bool sounding_ = false;
  bool searched_ = false;
  std::optional<Player> player_;
};

/// Sine tones one after the other as a WAV file (mono, 16 bits, 22050 Hz), each with soft ends. A tone's duration is
/// held to 5 s.
QByteArray ToneWave(const std::vector<Tone>& tones);

}  // namespace hylden
