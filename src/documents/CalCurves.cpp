#include "documents/CalCurves.h"

#include <cmath>
#include <utility>

#include "measure/Conversions.h"
#include "shell/FormInput.h"

namespace hylden {

namespace {

constexpr float kOhms = 50;

/// More digits than a record has would only be noise.
double Rounded(double decibels) {
  constexpr double kDigits = 1000;
  return std::round(decibels * kDigits) / kDigits;
}

double Less(double a, double b) {
  return IsMissing(a) || IsMissing(b) ? kNoValue : Rounded(a - b);
}

double ValueOf(const CalPoint& point, CalQuantity quantity) {
  const auto generatorDbm = static_cast<double>(point.SigGenLevel), forwardDbm = static_cast<double>(point.FwdPwr);
  switch (quantity) {
    case CalQuantity::GeneratorLevel:
      return generatorDbm;
    case CalQuantity::TestLevel:
      return static_cast<double>(point.TestLevel);
    case CalQuantity::ForwardPower:
      return forwardDbm;
    case CalQuantity::ReversePower:
      return static_cast<double>(point.RevPwr);
    case CalQuantity::NetPower: {
      const auto netDbm = static_cast<double>(NetPwrOf(point.FwdPwr, point.RevPwr));
      return IsMissing(netDbm) ? netDbm : Rounded(netDbm);
    }
    case CalQuantity::TestLevelGain:
      if (IsMissing(generatorDbm)) return kNoValue;
      return Less(static_cast<double>(point.TestLevel), Conversions::DbmToDbuv(generatorDbm, kOhms));
    case CalQuantity::ForwardGain:
      return Less(forwardDbm, generatorDbm);
  }
  return kNoValue;
}

double OrGap(double value) {
  return IsMissing(value) ? kGap : value;
}

}  // namespace

Result<std::unique_ptr<CurveFile>> CalCurves::Load(const std::string& infoFile) {
  std::unique_ptr<CalCurves> curves(new CalCurves(infoFile));
  // The data file first: it is the one that refuses another kind of file by its name.
  if (const Done read = curves->data_.LoadFile(infoFile); !read) return Because(read.error());
  CalInfo info;
  if (const Done read = info.LoadDef(infoFile); !read) return Because(read.error());
  curves->info_ = std::move(info.Record);
  return std::unique_ptr<CurveFile>(std::move(curves));
}

const std::vector<CurveQuantity>& CalCurves::Quantities() const {
  static const std::vector<CurveQuantity> kQuantities = {
      {"Generator level", "dBm", "What the signal generator had to give for the test level"},
      {"Test level", "dBuV", "The level at the coupling device", FreqAxis::Log},
      {"Forward power", "dBm", "The power towards the coupling device"},
      {"Reverse power", "dBm", "The power that came back from it"},
      {"Net power", "dBm", "Forward less reverse power, in watts, as dBm"},
      {"Gain to the test level", "dB",
       "Test level less generator level, both in dBuV (dBm + 107): amplifier, cables and coupling device together"},
      {"Gain to the forward power", "dB",
       "Forward power less generator level: the amplifier, and the cables up to the coupler"}};
  return kQuantities;
}

std::vector<CurvePoint> CalCurves::Points(std::size_t quantity) const {
  std::vector<CurvePoint> points;
  points.reserve(data_.Points().size());
  for (const CalPoint& point : data_.Points())
    points.push_back({point.Freq, OrGap(ValueOf(point, static_cast<CalQuantity>(quantity)))});
  return points;
}

double CalCurves::ValueAt(std::size_t quantity, double freqMHz) {
  const CalPoint found{freqMHz, data_.GetSigGen(freqMHz), data_.GetTestLevel(freqMHz), data_.GetFwdPwr(freqMHz),
                       data_.GetRevPwr(freqMHz)};
  return OrGap(ValueOf(found, static_cast<CalQuantity>(quantity)));
}

std::string CalCurves::Description() const {
  std::string text;
  for (const std::string& part : {info_.SetupDescription, info_.AmpUsed, info_.DeviceDescription,
                                  FileNameOnly(info_.TestLevel), info_.FreqRange + " MHz"})
    if (!part.empty()) text += (text.empty() ? "" : "; ") + part;
  return text;
}

}  // namespace hylden
