#pragma once

#include <string>

namespace hylden {

struct BenchConfig;
struct CalSetupRecord;

/// Calibrates a station on the simulated bench as the program does, in virtual time, and saves the record.
/// @param equipmentFile  the station (.eqp); the files that it names count from the working directory
/// @param recordFile     the record's data file (.cal); its info file stands beside it
/// @throws std::runtime_error when the station can't be loaded, a point can't be calibrated or the record can't be
/// saved; what the calibration says about it is on standard error
void CalibrateOnBench(const BenchConfig& config, const std::string& equipmentFile, const CalSetupRecord& setup,
                      const std::string& recordFile);

}  // namespace hylden
