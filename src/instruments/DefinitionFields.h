#pragma once

#include <limits>

#include "instruments/MeterDefinition.h"
#include "instruments/PowerMeterDefinition.h"
#include "instruments/SigGenDefinition.h"
#include "shell/FormFields.h"

namespace hylden {

/// The fields of frmSigGen, frmMeter and frmPMeter.
void FormFields(FormWalker& f, SigGenDefinition& d);
/// The levels are shown in the definition's units, and keep what they are in dBuV until another number is typed.
void FormFields(FormWalker& f, MeterDefinition& d);
void FormFields(FormWalker& f, PowerMeterDefinition& d);

/// Has entries whose units were changed show their levels in the new ones.
/// @param record  what the entries edit; has the former units, and gets the new ones with the levels typed so far
void ChangeUnits(FormEntries& entries, MeterDefinition& record);

}  // namespace hylden
