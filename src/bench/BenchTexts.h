#pragma once

#include <optional>
#include <string>

#include "bench/BenchReadout.h"

/// The wordings of what is read on the bench.
namespace hylden {

/// "Address 13: Demo analyser"; says so when it is not there or does not answer.
std::string InstrumentText(const InstrumentReadout& instrument);
/// "AM 80 %, 1 kHz"; settings that nobody made are left out.
std::string ModulationText(const GeneratorState& output);
/// The frequency and the range: "27.5 MHz, up to 130.0 dBuV".
std::string MeterSettingText(const BenchReadout& bench);
/// "72.67 dBuV", "1.674 V"; "nothing yet".
std::string ReadingText(const std::optional<BenchReading>& reading);
/// What a channel of the power meter is connected to: "forward", "reverse" ...
std::string SensorText(PowerSensors sensors, int channel);
std::string AmplifierText(const BenchReadout& bench);
std::string ProductStateText(ProductState state);
/// "2.3 dB below the threshold"; empty without one.
std::string MarginText(const ProductReadout& product);
/// What the cabling is for, and what it does to the path.
std::string CablingText(MeterAt place);

}  // namespace hylden
