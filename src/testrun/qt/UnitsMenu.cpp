#include "testrun/qt/UnitsMenu.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>

namespace hylden {

UnitsMenu::UnitsMenu(QMenu& menu, RunUnitChoice& choice)
    : QObject(&menu),
      testLevel_(AddMenu(menu, "mnuUnitsTarget", "&Test Level", choice.TestLevel,
                         {{"mnuLevelUnitsDBuV", "dBu&v", RunUnit::DbuV},
                          {"mnuLevelUnitsDBuA", "dBu&A", RunUnit::DbuA},
                          {"mnuLevelUnitsDBm", "dB&m", RunUnit::Dbm},
                          {"mnuLevelUnitsMW", "m&W", RunUnit::Milliwatts},
                          {"mnuLevelUnitsVolts", "V&olts", RunUnit::Volts}})),
      induced_(AddMenu(menu, "mnuUnitsInduced", "&Induced Level", choice.Induced,
                       {{"mnuUnitsInducedDBuV", "dBu&v est", RunUnit::DbuV},
                        {"mnuUnitsInducedDBuA", "dBu&A", RunUnit::DbuA},
                        {"mnuUnitsInducedDBM", "dB&m est", RunUnit::Dbm},
                        {"mnuUnitsInducedMW", "m&W est", RunUnit::Milliwatts},
                        {"mnuUnitsInducedVolts", "V&olts est", RunUnit::Volts},
                        {"mnuUnitsInducedRelative", "dB &relative", RunUnit::Relative}})),
      power_(AddMenu(menu, "mnuUnitsPower", "&Power", choice.Power,
                     {{"mnuUnitsPowerdBm", "dB&m", RunUnit::Dbm}, {"mnuUnitsPowerWatts", "&Watts", RunUnit::Watts}})) {}

QMenu* UnitsMenu::AddMenu(QMenu& menu, const char* name, const char* title, RunUnit& choice,
                          std::initializer_list<Entry> entries) {
  QMenu* const units = menu.addMenu(QString::fromLatin1(title));
  units->setObjectName(QLatin1String(name));
  auto* const group = new QActionGroup(units);
  for (const Entry& entry : entries) {
    QAction* const action = group->addAction(QString::fromLatin1(entry.Text));
    action->setObjectName(QLatin1String(entry.Name));
    action->setCheckable(true);
    action->setChecked(entry.Unit == choice);
    units->addAction(action);
    connect(action, &QAction::triggered, this, [this, &choice, unit = entry.Unit] {
      choice = unit;
      emit Chosen();
    });
  }
  return units;
}

}  // namespace hylden
