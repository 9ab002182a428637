#include "instruments/DefinitionListing.h"

#include "instruments/MeterDefinition.h"
#include "instruments/PowerMeterDefinition.h"
#include "instruments/SigGenDefinition.h"
#include "text/Characters.h"
#include "text/Numbers.h"

namespace hylden {

namespace {

constexpr int kTopLines = 6;
constexpr std::size_t kInitPieceLength = 60;
const std::string kNoLabel(17, ' ');

/// The text in pieces of at most `length` characters (of UTF-8); one empty piece for an empty text.
std::vector<std::string> Pieces(std::string_view text, std::size_t length) {
  std::vector<std::string> pieces;
  do {
    const std::string& piece = pieces.emplace_back(FirstCharacters(text, length));
    text.remove_prefix(piece.size());
  } while (!text.empty());
  return pieces;
}

class Lines {
 public:
  Lines& Text(const std::string& label, const std::string& value) {
    lines_.push_back(label + value);
    return *this;
  }
  Lines& Number(const std::string& label, double value, const std::string& unit = {}) {
    return Text(label, ShortestText(value) + unit);
  }
  Lines& Number(const std::string& label, float value, const std::string& unit = {}) {
    return Text(label, ShortestText(value) + unit);
  }
  Lines& Code(const std::string& label, int value, const std::string& meaning = {}) {
    return Text(label, std::to_string(value) + meaning);
  }
  Lines& Init(const std::string& initString) {
    std::string label = "    Init String: ";
    for (const std::string& piece : Pieces(initString, kInitPieceLength)) {
      Text(label, piece);
      label = kNoLabel;
    }
    return *this;
  }
  Lines& Frequencies(const InstrumentDefinition& d) {
    return Number("   Maximum Freq: ", d.MaximumFreq).Number("   Minimum Freq: ", d.MinimumFreq);
  }
  Lines& EndOfString(const InstrumentDefinition& d) {
    return Code("  End of String: ", d.EndOfString, "  (0 = none, 1 = cr, 2 = cr/lf)");
  }
  Lines& Gap() { return Text("", ""); }
  std::vector<std::string> Take() { return std::move(lines_); }

 private:
  std::vector<std::string> lines_;
};

/// The lines that every listing begins with.
Lines Head(const InstrumentDefinition& d) {
  Lines lines;
  lines.Text("Instrument Name: ", d.InstrumentName).Code("        Address: ", d.Address).Gap();
  lines.Init(d.InitString).Gap();
  lines.Text("Freq Set Prefix: ", d.FreqSetPrefix).Text("         Suffix: ", d.FreqSetSuffix).Gap();
  return lines;
}

}  // namespace

std::vector<std::string> Listing(const SigGenDefinition& d) {
  Lines lines = Head(d);
  lines.Text(" Lev Set Prefix: ", d.LevSetPrefix).Text(kNoLabel, d.LevSetSuffix).Gap();
  lines.Text(" Modulation Off: ", d.ModulationOff).Gap();
  lines.Text("         RF Off: ", d.RfOff).Text("         Rf On : ", d.RfOn).Gap();
  lines.Code("     AM Capable: ", d.AmCapable);
  lines.Text(" AM Freq Prefix: ", d.AmFreqPrefix).Text("         Suffix: ", d.AmFreqSuffix).Gap();
  lines.Text("AM Depth Prefix: ", d.AmDepthPrefix).Text("         Suffix: ", d.AmDepthSuffix).Gap();
  lines.Text("      AM Mod On: ", d.AmModOn).Gap();
  lines.Code("     FM Capable: ", d.FmCapable);
  lines.Text(" FM Freq Prefix: ", d.FmFreqPrefix).Text("         Suffix: ", d.FmFreqSuffix).Gap();
  lines.Text("  FM Dev Prefix: ", d.FmDevPrefix).Text("         Suffix: ", d.FmDevSuffix).Gap();
  lines.Text("      FM Mod On: ", d.FmModOn).Gap();
  lines.Code("  Pulse Capable: ", d.PulseCapable);
  lines.Text(" Pulse Freq Pre: ", d.PulseFreqPrefix).Text("            Suf: ", d.PulseFreqSuffix).Gap();
  lines.Text("Pulse Width Pre: ", d.PulseWidthPrefix).Text("            Suf: ", d.PulseWidthSuffix).Gap();
  lines.Text("   Pulse Mod On: ", d.PulseModOn).Gap();
  lines.Number("  Maximum Level: ", d.MaximumLevel).Number("  Minimum Level: ", d.MinimumLevel).Gap();
  lines.Frequencies(d).Gap();
  return lines.EndOfString(d).Take();
}

std::vector<std::string> Listing(const MeterDefinition& d) {
  Lines lines = Head(d);
  lines.Text(" Lev Set Prefix: ", d.LevSetPrefix).Text(kNoLabel, d.LevSetSuffix).Gap();
  lines.Number("  Maximum Level: ", d.MaximumLevel, " dBuV").Number("  Minimum Level: ", d.MinimumLevel, " dBuV").Gap();
  lines.Frequencies(d).Gap();
  lines.Text("        Trigger: ", d.Trigger).Text("           Read: ", d.Read);
  lines.Text("      Parse cmd: ", d.ParseCmd).Text("       Shutdown: ", d.Shutdown).Gap();
  lines.Code("          Units: ", d.Units, "  (0 = Volts, 1 = dBuv, 2 = mv, 3 = dbmv, 4 = dbm)");
  lines.Code("           Type: ", d.Type, "  (0 = SpecAn, 1 = Scope, 2 = RfMeter)");
  lines.Number("  Settling Time: ", d.SettlingTime);
  return lines.EndOfString(d).Take();
}

std::vector<std::string> Listing(const PowerMeterDefinition& d) {
  Lines lines = Head(d);
  lines.Frequencies(d);
  lines.Number("     Bandswitch: ", d.Bandswitch).Gap();
  lines.Text("     Select Ch1: ", d.SelectCh1).Text("     Select Ch2: ", d.SelectCh2).Gap();
  lines.Text("    Ch1 Trigger: ", d.Ch1Trigger).Text("    Ch2 Trigger: ", d.Ch2Trigger).Gap();
  lines.Text("       Ch1 Read: ", d.Ch1Read).Text("       Ch2 Read: ", d.Ch2Read);
  lines.Text("    Parsing Cmd: ", d.ParsingCmd).Text("       Shutdown: ", d.Shutdown).Gap();
  lines.Code("          Units: ", d.Units, "  (0=Watts, 1=dBm, 2=dBuv, 3=mv, 4=Volts, 5=dBmv)");
  lines.Code("           Type: ", d.Type, "  (0 = SpecAn, 1 = PowerMeter)");
  lines.Number("  Settling Time: ", d.SettlingTime);
  return lines.EndOfString(d).Take();
}

PrintJob ListingJob(const std::string& title, const std::vector<std::string>& listing) {
  PrintJob job;
  job.title = title;
  job.lines.resize(kTopLines);
  for (const std::string& line : listing) job.lines.push_back({line});
  return job;
}

}  // namespace hylden
