#include <algorithm>
#include <iomanip>
#include <iostream>
#include <string>

#include "app/ConsoleJobs.h"
#include "app/ConsoleStation.h"

namespace hylden {

namespace {

constexpr int kLastAddress = 30;

/// The way of every address; a row stands for all in a row that share one.
void PrintWays(const GpibDriver& driver) {
  for (int first = 0, next = 0; first <= kLastAddress; first = next) {
    const std::string way = driver.Way(first);
    for (next = first + 1; next <= kLastAddress && driver.Way(next) == way;) ++next;
    const std::string addresses = std::to_string(first) + (next - first > 1 ? " to " + std::to_string(next - 1) : "");
    std::cout << "Address " << addresses << ": " << way << '\n';
  }
}

/// Whether nobody can be reached: what stands for each way is the advice on what is missing.
bool LacksEveryWay(const GpibDriver& driver, const std::vector<BusUnit>& units) {
  const auto lacks = [&](int address) {
    const std::string way = driver.Way(address);
    return way.empty() || way == driver.Advice();
  };
  for (int address = 0; units.empty() && address <= kLastAddress; ++address)
    if (!lacks(address)) return false;
  return std::ranges::all_of(units, [&](const BusUnit& unit) { return lacks(unit.Address); });
}

void PrintUnits(const std::vector<BusPanel::Row>& rows) {
  for (const BusPanel::Row& row : rows)
    std::cout << "Address " << std::setw(2) << row.Unit.Address << "  " << row.Unit.Name << ": " << row.Way << '\n';
}

/// Prints what a look at the bus came to. @return its words
std::string WordsOf(const BusPanel::Outcome& outcome) {
  if (outcome) return *outcome;
  const std::vector<Message> boxes = outcome.error().Boxes();
  return boxes.empty() ? std::string() : boxes.front().text;
}

}  // namespace

ExitState PrintBusInfo(ConsoleStation& station) {
  if (!station.SetUp() || !station.MayMakeTrace({station.Options().EquipmentFile})) return ExitState::Failed;
  const GpibDriver& driver = station.TheShell().gpib;
  BusPanel panel(station.TheShell(), station.TheInstruments());
  const auto cleared = panel.ClearInterface();
  const auto listeners = cleared ? panel.FindListeners() : cleared;
  const GpibStatusCells status = station.TheInstruments().gpib.Status();
  const std::vector<BusUnit> units = station.BusUnits();
  if (!listeners && LacksEveryWay(driver, units)) {
    std::cout << (driver.Advice().empty() ? WordsOf(listeners) : driver.Advice()) << '\n';
    return ExitState::Failed;
  }
  if (units.empty())
    PrintWays(driver);
  else
    PrintUnits(panel.Rows(units));
  std::cout << WordsOf(cleared) << '\n';
  if (cleared) std::cout << WordsOf(listeners) << '\n';
  const bool canNotTell = cleared && status.error == gpib::kEcap;
  return listeners || canNotTell ? ExitState::Finished : ExitState::Failed;
}

}  // namespace hylden
