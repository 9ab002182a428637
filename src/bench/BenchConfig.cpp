#include "bench/BenchConfig.h"

#include <charconv>
#include <cmath>
#include <optional>
#include <span>

#include "text/Numbers.h"
#include "text/RuntimeError.h"
#include "text/TextFile.h"

namespace hylden {
namespace {

constexpr const char* kPlaces[] = {"port", "probe", "generator", "cable"};
constexpr const char* kDetectors[] = {"type", "carrier", "peak", "average"};
constexpr const char* kFaults[] = {"fail", "late", "garbage", "silent", "absent", "protection"};

/// Every key of a bench file, once: name, field, range, meaning.
template <class F>
void Keys(F& f, BenchConfig& c) {
  f.Number("noise_db", c.NoiseDb, 0, 10, "standard deviation of every reading, dB");
  f.Whole("seed", c.Seed, "equal seeds give equal noise");
  f.Choice("meter_at", c.Meter, kPlaces, "where the meter is connected: port, probe, generator or cable (under test)");
  f.Number("generator.settling_ms", c.GeneratorSettlingMs, 0, 60000,
           "until then after a change readings still show what was before");
  f.Number("amplifier.saturation_dbm", c.SaturationDbm, -100, 100, "the amplifier's most; 1 dB is lost 3 dB below it");
  f.Flag("amplifier.protection", c.Protection, "yes: the gain is 20 dB lower");
  f.Number("ifi.low_saturation_dbm", c.IfiLowSaturationDbm, -100, 100, "the same of the low-band unit");
  f.Number("ifi.high_saturation_dbm", c.IfiHighSaturationDbm, -100, 100, "and of the high-band unit");
  f.Number("ifi.leakage_db", c.IfiLeakageDb, 0, 200, "loss through the units when neither band is selected");
  f.Number("coupler.loss_db", c.CouplerLossDb, 0, 10, "main line of the directional coupler");
  f.Number("coupler.directivity_db", c.DirectivityDb, 0, 100, "how far forward power stays out of the reverse port");
  f.Number("coupling.pad_db", c.PadDb, 0, 40, "attenuator before the coupling device");
  f.Number("coupling.factor_db", c.CouplingFactorDb, 0, 60,
           "open-circuit test level over the level at the calibration port");
  f.Number("coupling.source_ohm", c.SourceOhm, 50, 10000, "source impedance that the product sees");
  f.Text("meter.answer", c.MeterAnswer,
         "text of an answer around {level}, or {level:e} in exponent form, {freq}; empty: the plain number");
  f.Choice("meter.detector", c.Detector, kDetectors,
           "what of a modulated signal is read: type, carrier, peak, average");
  f.Number("meter.floor_dbuv", c.MeterFloorDbuv, -100, 200, "the meter's own noise");
  f.Number("meter.range_db", c.MeterRangeDb, 10, 200, "what lies further below the reference level is not seen");
  f.Number("meter.bandwidth_khz", c.MeterBandwidthKHz, 0, 1e6, "an analyser tuned further off sees nothing");
  f.Number("meter.capture_ms", c.MeterCaptureMs, -1, 60000,
           "from trigger to a fresh reading; -1: 80 % of the definition's settling time");
  f.Text("power_meter.answer", c.PowerMeterAnswer, "as meter.answer, and {channel} for A or B");
  f.Number("power_meter.floor_dbm", c.PowerMeterFloorDbm, -150, 50, "the sensors' own noise");
  f.Number("power_meter.capture_ms", c.PowerMeterCaptureMs, -1, 60000, "as meter.capture_ms");
  f.Table("cable.drive", c.DriveCable, 0, 200, "generator to amplifier, dB");
  f.Table("amplifier.gain", c.AmplifierGain, -200, 200, "dB, far from saturation");
  f.Table("ifi.low_gain", c.IfiLowGain, -200, 200, "the low-band unit's, dB");
  f.Table("ifi.high_gain", c.IfiHighGain, -200, 200, "the high-band unit's, dB");
  f.Table("coupler.forward", c.ForwardCoupling, 0, 200, "coupling of the forward port, dB");
  f.Table("coupler.reverse", c.ReverseCoupling, 0, 200, "coupling of the reverse port, dB");
  f.Table("coupling.loss", c.CouplingLoss, 0, 200, "coupling device, input to calibration port, dB (ideally 9.5)");
  f.Table("cable.meter", c.Cable, 0, 200, "calibration port or monitor probe to meter, dB");
  f.Table("cable.under_test", c.CableUnderTest, 0, 200, "the cable of the insertion-loss calibration, dB");
  f.Table("probe.factor", c.Probe, -100, 200, "monitor probe: current in dBuA over its output in dBuV, dB");
  f.Table("product.ohm", c.ProductOhm, 0.1, 1e6, "common-mode impedance of the product, ohm");
  f.Table("product.disturbed_dbuv", c.Susceptibility, -200, 400, "peak test level from which the product is disturbed");
}

std::optional<double> NumberIn(std::string_view text) {
  text = Trim(text);
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<int> ChoiceIn(std::string_view text, std::span<const char* const> names) {
  for (std::size_t i = 0; i < names.size(); ++i)
    if (text == names[i]) return static_cast<int>(i);
  return std::nullopt;
}

std::string OneOf(std::span<const char* const> names) {
  std::string text = "must be one of";
  for (const char* name : names) text += std::string(" ") + name;
  return text;
}

std::string Between(double lowest, double highest) {
  return "must be a number from " + ShortestText(lowest) + " to " + ShortestText(highest);
}

/// The blank-separated words of a line; a comma separates too.
std::vector<std::string_view> Words(std::string_view line) {
  constexpr std::string_view kBlank = " \t,";
  std::vector<std::string_view> words;
  for (auto at = line.find_first_not_of(kBlank); at != std::string_view::npos;) {
    const auto end = std::min(line.find_first_of(kBlank, at), line.size());
    words.push_back(line.substr(at, end - at));
    at = line.find_first_not_of(kBlank, end);
  }
  return words;
}

std::string CheckedNumber(double& field, std::string_view text, double lowest, double highest) {
  const auto number = NumberIn(text);
  if (!number || *number < lowest || *number > highest) return Between(lowest, highest);
  field = *number;
  return {};
}

/// Puts the value of one "key = value" line into its field.
struct Assignment {
  std::string_view key, value;
  bool found = false;
  std::string error = {};

  bool Is(const char* name) { return !found && key == name && (found = true); }
  void Number(const char* name, double& field, double lowest, double highest, const char*) {
    if (Is(name)) error = CheckedNumber(field, value, lowest, highest);
  }
  void Whole(const char* name, std::int32_t& field, const char*) {
    double number = field;
    if (!Is(name)) return;
    error = CheckedNumber(number, value, 0, 1e9);
    if (error.empty() && number != std::floor(number)) error = "must be a whole number";
    if (error.empty()) field = static_cast<std::int32_t>(number);
  }
  template <class Enum>
  void Choice(const char* name, Enum& field, std::span<const char* const> names, const char*) {
    if (!Is(name)) return;
    const auto choice = ChoiceIn(value, names);
    choice ? void(field = static_cast<Enum>(*choice)) : void(error = OneOf(names));
  }
  void Flag(const char* name, bool& field, const char*) {
    if (!Is(name)) return;
    if (value != "yes" && value != "no") error = "must be yes or no";
    field = value == "yes";
  }
  void Text(const char* name, std::string& field, const char*) {
    if (Is(name)) field = value;
  }
  void Table(const char* name, FrequencyTable&, double, double, const char*) {
    if (Is(name)) error = "is a table: write [" + std::string(name) + "] and a line for each point";
  }
};

/// Finds the table that a "[name]" line begins.
struct TableSearch {
  std::string_view key;
  FrequencyTable* table = nullptr;
  double lowest = 0, highest = 0;

  void Number(const char*, double&, double, double, const char*) {}
  void Whole(const char*, std::int32_t&, const char*) {}
  template <class Enum>
  void Choice(const char*, Enum&, std::span<const char* const>, const char*) {}
  void Flag(const char*, bool&, const char*) {}
  void Text(const char*, std::string&, const char*) {}
  void Table(const char* name, FrequencyTable& field, double low, double high, const char*) {
    if (key == name) table = &field, lowest = low, highest = high;
  }
};

/// Writes every key with its meaning.
struct Listing {
  std::vector<std::string> lines;

  void Line(const char* name, const std::string& value, const char* meaning) {
    lines.push_back(std::string("# ") + meaning);
    lines.push_back(std::string(name) + " = " + value);
  }
  void Number(const char* name, double field, double, double, const char* meaning) {
    Line(name, ShortestText(field), meaning);
  }
  void Whole(const char* name, std::int32_t field, const char* meaning) { Line(name, std::to_string(field), meaning); }
  template <class Enum>
  void Choice(const char* name, Enum field, std::span<const char* const> names, const char* meaning) {
    Line(name, names[static_cast<std::size_t>(field)], meaning);
  }
  void Flag(const char* name, bool field, const char* meaning) { Line(name, field ? "yes" : "no", meaning); }
  void Text(const char* name, const std::string& field, const char* meaning) { Line(name, field, meaning); }
  void Table(const char* name, const FrequencyTable& field, double, double, const char* meaning) {
    lines.insert(lines.end(), {"", std::string("# ") + meaning, "[" + std::string(name) + "]"});
    for (const auto& point : field.Points())
      lines.push_back(ShortestText(point.FreqMHz) + " " + ShortestText(point.Value));
  }
};

/// "late meter 3 12000": kind, who, which call, and for a late answer the delay in ms.
std::string ParseFault(std::string_view text, std::vector<BenchFault>& faults) {
  const auto words = Words(text);
  if (words.size() < 3) return "needs a kind, who, and which call";
  const auto kind = ChoiceIn(words[0], kFaults);
  if (!kind) return "kind " + OneOf(kFaults);
  const auto who = ChoiceIn(words[1], kBenchRoles);
  if (!who) return "who " + OneOf(kBenchRoles);
  BenchFault fault{static_cast<FaultKind>(*kind), static_cast<BenchRole>(*who)};
  const bool late = fault.Kind == FaultKind::Late;
  if (words.size() != (late ? 4u : 3u)) return late ? "needs the delay in ms as its last word" : "has a word too many";
  double call = 0, delay = 0;
  std::string error = CheckedNumber(call, words[2], 1, 1e9);
  if (error.empty() && late) error = CheckedNumber(delay, words[3], 0, 1e9);
  if (!error.empty()) return error;
  fault.Call = static_cast<int>(call);
  fault.LateMs = static_cast<std::int64_t>(delay);
  faults.push_back(fault);
  return {};
}

/// Reads a bench file line by line; every step gives what is wrong with its line, or nothing.
class Reader {
 public:
  explicit Reader(BenchConfig& config) : config_(config) {}

  std::string Take(std::string_view line) {
    line = Trim(line);
    if (line.empty() || line.front() == '#') return {};
    if (line.front() == '[') return BeginTable(line);
    if (line.find('=') != std::string_view::npos) return Assign(line);
    return AddPoint(line);
  }

  std::string Finish() const {
    if (table_ && table_->Points().empty()) return "the table " + tableName_ + " has no points";
    return {};
  }

 private:
  std::string Assign(std::string_view line) {
    const auto equals = line.find('=');
    Assignment assignment{Trim(line.substr(0, equals)), Trim(line.substr(equals + 1))};
    const std::string key(assignment.key);
    if (key != "fault" && SeenBefore(key)) return key + " is given twice";
    if (key == "fault")
      assignment.found = true, assignment.error = ParseFault(assignment.value, config_.Faults);
    else
      Keys(assignment, config_);
    if (!assignment.found) return "unknown key " + key;
    return assignment.error.empty() ? "" : key + " " + assignment.error;
  }

  std::string BeginTable(std::string_view line) {
    if (std::string error = Finish(); !error.empty()) return error;
    if (line.back() != ']') return "a table's name stands between [ and ]";
    tableName_ = Trim(line.substr(1, line.size() - 2));
    TableSearch search{tableName_};
    Keys(search, config_);
    if (!search.table) return "unknown table " + tableName_;
    if (SeenBefore(tableName_)) return "the table " + tableName_ + " is given twice";
    table_ = search.table, lowest_ = search.lowest, highest_ = search.highest;
    *table_ = FrequencyTable();
    return {};
  }

  std::string AddPoint(std::string_view line) {
    const auto words = Words(line);
    if (!table_) return "expected key = value, or [table]";
    if (words.size() != 2) return "a point of " + tableName_ + " is a frequency and a value";
    double freq = 0, value = 0;
    if (std::string error = CheckedNumber(freq, words[0], 0, 1e6); !error.empty()) return "the frequency " + error;
    if (std::string error = CheckedNumber(value, words[1], lowest_, highest_); !error.empty())
      return "the value of " + tableName_ + " " + error;
    return table_->Append(freq, value) ? "" : "the frequencies of " + tableName_ + " must rise";
  }

  bool SeenBefore(const std::string& name) {
    for (const auto& seen : seen_)
      if (seen == name) return true;
    seen_.push_back(name);
    return false;
  }

  BenchConfig& config_;
  std::vector<std::string> seen_;
  FrequencyTable* table_ = nullptr;
  std::string tableName_;
  double lowest_ = 0, highest_ = 0;
};

}  // namespace

BenchConfig::BenchConfig()
    : DriveCable{{0.01, 0.02}, {1, 0.1}, {10, 0.22}, {100, 0.6}, {400, 1.1}, {1000, 1.7}},
      AmplifierGain{{0.01, 40},  {0.15, 44.2}, {1, 45.6}, {10, 46}, {60, 45.2},
                    {120, 44.6}, {230, 44},    {400, 42}, {600, 20}},
      IfiLowGain{{0.01, 42}, {0.15, 46}, {1, 47}, {50, 47.5}, {150, 46.5}, {230, 45}, {260, 40}, {320, 0}},
      IfiHighGain{{150, 0}, {185, 40}, {200, 44.5}, {230, 45}, {400, 46}, {1000, 43}},
      ForwardCoupling{{0.01, 40.6}, {0.15, 40.4}, {1, 40.2}, {30, 40}, {100, 39.8}, {230, 39.6}, {1000, 39.3}},
      ReverseCoupling{{0.01, 40.7}, {0.15, 40.5}, {1, 40.2}, {30, 40.1}, {100, 39.9}, {230, 39.7}, {1000, 39.5}},
      CouplingLoss{{0.01, 12}, {0.15, 10.2}, {0.5, 9.6}, {5, 9.4},    {26, 9.3},
                   {60, 9.8},  {80, 10.1},   {120, 9.2}, {180, 10.3}, {230, 10.5}},
      Cable{{0.01, 0.02}, {0.15, 0.04}, {1, 0.1},    {3, 0.15},  {10, 0.26},
            {30, 0.44},   {100, 0.8},   {230, 1.21}, {400, 1.6}, {1000, 2.53}},
      CableUnderTest(Cable),
      Probe{{0.01, 34}, {0.15, 19}, {0.5, 11}, {1, 7}, {3, 3}, {10, 1}, {30, 0.5}, {100, 0}, {230, 0.8}, {400, 2}},
      ProductOhm{{0.01, 1500}, {0.15, 1100}, {0.5, 600}, {1.5, 300}, {5, 160},  {10, 90},   {12.5, 30},
                 {16, 320},    {18, 900},    {21, 250},  {27, 45},   {36, 400}, {45, 1500}, {54, 300},
                 {68, 40},     {82, 220},    {100, 520}, {125, 140}, {150, 60}, {180, 480}, {230, 120}},
      Susceptibility{{0.01, 165}, {10, 160}, {12.5, 138}, {15, 160}, {60, 160}, {68, 142}, {76, 160}, {230, 165}} {}

BenchFile ParseBenchFile(std::string_view text) {
  BenchFile file;
  Reader reader(file.Config);
  LineReader lines{std::string(text)};
  int number = 0;
  while (!lines.AtEnd()) {
    ++number;
    const std::string error = reader.Take(lines.ReadLine());
    if (error.empty()) continue;
    file.Error = "line " + std::to_string(number) + ": " + error;
    return file;
  }
  if (const std::string error = reader.Finish(); !error.empty())
    file.Error = "line " + std::to_string(number) + ": " + error;
  return file;
}

BenchFile LoadBenchFile(const std::string& path) {
  try {
    BenchFile file = ParseBenchFile(ReadTextFile(path));
    if (!file.Ok()) file.Error = path + ", " + file.Error;
    return file;
  } catch (const RuntimeError& error) {
    return {BenchConfig(), path + ": " + error.Description()};
  }
}

std::string BenchFileText(BenchConfig config) {
  Listing listing;
  listing.lines = {
      "# The simulated bench. A line is a comment, key = value, or [table] with lines of MHz and value below it.",
      "# A key or a table that is left out keeps its default.", ""};
  Keys(listing, config);
  for (const BenchFault& fault : config.Faults) {
    std::string line = std::string("fault = ") + kFaults[static_cast<int>(fault.Kind)] + " " +
                       kBenchRoles[static_cast<int>(fault.Who)] + " " + std::to_string(fault.Call);
    if (fault.Kind == FaultKind::Late) line += " " + std::to_string(fault.LateMs);
    listing.lines.push_back(line);
  }
  return JoinLines(listing.lines);
}

}  // namespace hylden
