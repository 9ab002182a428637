#pragma once

#include <string>
#include <vector>

#include "platform/Printer.h"

namespace hylden {

struct MeterDefinition;
struct PowerMeterDefinition;
struct SigGenDefinition;

/// A definition's fields as lines: a label of 17 characters and the value, groups parted by empty lines. The Init
/// String stands in pieces of 60 characters.
std::vector<std::string> Listing(const SigGenDefinition& definition);
std::vector<std::string> Listing(const MeterDefinition& definition);
std::vector<std::string> Listing(const PowerMeterDefinition& definition);

/// A listing to be printed, below six empty lines.
PrintJob ListingJob(const std::string& title, const std::vector<std::string>& listing);

}  // namespace hylden
