#pragma once

#include <QObject>

#include "testrun/RunUnits.h"

class QMenu;

namespace hylden {

/// The Units menu of a window that shows the levels of a run.
class UnitsMenu : public QObject {
  Q_OBJECT

 public:
  /// Fills the menu.
  /// @param choice  what is ticked, and what an entry changes; it must outlive the menu
  UnitsMenu(QMenu& menu, RunUnitChoice& choice);

  QMenu& TestLevel() const { return *testLevel_; }
  QMenu& Induced() const { return *induced_; }
  QMenu& Power() const { return *power_; }

 signals:
  /// The choice has changed.
  void Chosen();

 private:
  struct Entry {
    const char *Name, *Text;
    RunUnit Unit;
  };
  QMenu* AddMenu(QMenu& menu, const char* name, const char* title, RunUnit& choice,
                 std::initializer_list<Entry> entries);

  QMenu *testLevel_, *induced_, *power_;
};

}  // namespace hylden
