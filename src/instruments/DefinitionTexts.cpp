#include "instruments/DefinitionTexts.h"

namespace hylden {

const DefinitionTexts& TextsOf(InstrumentKind kind) {
  static constexpr DefinitionTexts kSigGen{"Signal Generator File: ",
                                           "Select signal generator definition file",
                                           "Select signal generator filename",
                                           "Signal Generators (*.sg)|*.sg|All Files|*.*",
                                           "sg",
                                           "The signal generator definition",
                                           "Defining a signal generator"};
  static constexpr DefinitionTexts kMeter{
      "Meter File: ", "Select meter definition file", "Select meter filename", "Meters (*.mtr)|*.mtr|All Files|*.*",
      "mtr",          "The meter definition",         "Defining a meter"};
  static constexpr DefinitionTexts kPwrMtr{"Power Meter File: ",
                                           "Select Power Meter File",
                                           "Select Power Meter Filename",
                                           "PMeters (*.pm)|*.pm|All Files|*.*",
                                           "pm",
                                           "The power meter definition",
                                           "Defining a power meter"};
  switch (kind) {
    case InstrumentKind::SigGen:
      return kSigGen;
    case InstrumentKind::Meter:
      return kMeter;
    case InstrumentKind::PwrMtr:
      break;
  }
  return kPwrMtr;
}

}  // namespace hylden
