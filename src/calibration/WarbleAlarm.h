#pragma once

namespace hylden {

class Speaker;

/// The alarm at the end of a calibration: tones of 50 ms around a frequency (at least 100 Hz), a little above and below
/// it in turn, until the time is over.
void WarbleAlarm(Speaker& speaker, double frequencyHz = 1000, int durationMs = 2000);

}  // namespace hylden
