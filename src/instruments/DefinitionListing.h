#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace hylden {

class Shell;
struct MeterDefinition;
struct PowerMeterDefinition;
struct SigGenDefinition;

/// A definition's fields as lines: a label of 17 characters and the value, groups parted by empty lines. The Init
/// String stands in pieces of 60 characters.
std::vector<std::string> Listing(const SigGenDefinition& definition);
std::vector<std::string> Listing(const MeterDefinition& definition);
std::vector<std::string> Listing(const PowerMeterDefinition& definition);

/// Prints a listing below six empty lines. A printer's failure is reported with the context and the path.
void PrintListing(Shell& shell, const std::vector<std::string>& listing, const std::string& title,
                  std::string_view context, const std::string& path);

}  // namespace hylden
