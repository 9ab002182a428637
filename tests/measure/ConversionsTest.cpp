#include "measure/Conversions.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "text/RuntimeError.h"

namespace hylden {
namespace {

using namespace Conversions;

TEST(ConversionsTest, ConvertsLevelsBetweenTheirUnits) {
  const std::tuple<const char*, double, double> rows[] = {
      {"1 V", VoltsToDbuv(1.0), 120},
      {"1 uV is the first voltage that counts", VoltsToDbuv(1e-6), 0},
      {"half a uV counts as nothing", VoltsToDbuv(5e-7), 0},
      {"negative before small", VoltsToDbuv(-1e-9), -999},
      {"10 uV", MicrovoltsToDbuv(10), 20},
      {"a microvolt figure may be below one", MicrovoltsToDbuv(0.1), -20},
      {"negative uV", MicrovoltsToDbuv(-1), -999},
      {"no uV", MicrovoltsToDbuv(0), 0},
      {"10 V back", DbuvToVolts(140), 10},
      {"1 V in 50 ohm", VoltsToDbm(1.0, 50), 13.0103},
      {"0 V is the floor", VoltsToDbm(0, 50), -107},
      {"negative V", VoltsToDbm(-1, 50), -999},
      {"1 W", WattsToDbm(1), 30},
      {"0 W", WattsToDbm(0), -999},
      {"30 dBm", DbmToWatts(30), 1},
      {"0 dBm in 50 ohm", DbmToDbuv(0, 50), 106.9897},
      {"and back", DbuvToDbm(106.9897, 50), 0},
      {"voltage of a current across 150 ohm", DbuaToDbuv(0, 150), 43.5218},
      {"power of a current into 50 ohm", DbuaToDbm(0, 50), -73.0103},
      {"voltage ratio", RatioToDb(2, 1, 20), 6.0206},
      {"nothing over something", RatioToDb(0, 1, 10), -999},
      {"something over nothing", RatioToDb(1, 0, 10), -999},
  };
  for (const auto& [name, result, expected] : rows) EXPECT_NEAR(result, expected, 5e-5) << name;
}

TEST(ConversionsTest, TellsAnInvalidOperation) {
  const double kInfinity = std::numeric_limits<double>::infinity(), kNan = std::numeric_limits<double>::quiet_NaN();
  const std::function<double()> calls[] = {
      [] { return DbmToDbuv(0, 0); },
      [] { return DbuvToDbm(0, -50); },
      [] { return DbuaToDbm(0, 0); },
      [] { return DbuvToVolts(1e5); },
      [] { return DbmToWatts(1e5); },
      [&] { return VoltsToDbuv(kInfinity); },
      [&] { return WattsToDbm(kNan); },
      [&] { return DbmToDbuv(kNan, 50); },
      [] { return RatioToDb(1e300, 1e-300, 10); },
  };
  int index = 0;
  for (const auto& call : calls) EXPECT_THROW(call(), RuntimeError) << "call " << index++;
}

TEST(ConversionsTest, ConvertsEveryUnitThatInstrumentsHave) {
  const double powers[] = {30, 1, 1 - 106.9897, -46.9897, 13.0103, 61 - 106.9897};
  for (int code = 0; code < 6; ++code) EXPECT_NEAR(PowerReadingToDbm(code, 1).value(), powers[code], 5e-5) << code;

  const double levels[] = {120, 1, 60, 61, 107.9897};
  for (int code = 0; code < 5; ++code) {
    EXPECT_NEAR(MeterReadingToDbuv(code, 1).value(), levels[code], 5e-5) << code;
    EXPECT_NEAR(DbuvToMeterUnits(code, levels[code]).value(), 1, 5e-5) << code;
  }
  for (int code : {-1, 6}) EXPECT_FALSE(PowerReadingToDbm(code, 1)) << code;
  for (int code : {-1, 5}) {
    EXPECT_FALSE(MeterReadingToDbuv(code, 1)) << code;
    EXPECT_FALSE(DbuvToMeterUnits(code, 1)) << code;
  }
}

}  // namespace
}  // namespace hylden
