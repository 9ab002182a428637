#include "testrun/qt/SavedRunTable.h"

#include <QApplication>
#include <algorithm>

#include "widgets/ThemeColors.h"

namespace hylden {

SavedRunTable::SavedRunTable(QObject* parent)
    : RowTable(
          {kRunHeadings.begin(), kRunHeadings.end()},
          [this](std::size_t shown, std::size_t column) { return Cell(shown, column); },
          [this](std::size_t shown, std::size_t column) {
            return column > 0 && (hylden::IsThreshold(EntryAt(shown)) || IsNotHeld(EntryAt(shown)));
          },
          parent) {}

void SavedRunTable::Show(const std::vector<RunEntry>& rows, RowFilter filter) {
  RowChanged(0);
  rows_ = &rows;
  shown_ = RowsThrough(filter, rows);
  if (!shown_.empty()) RowChanged(static_cast<int>(shown_.size()));
}

int SavedRunTable::RowAt(int shown) const {
  return shown >= 0 && shown < rowCount() ? shown_[static_cast<std::size_t>(shown)] : 0;
}

int SavedRunTable::PlaceOf(int row) const {
  const auto found = std::lower_bound(shown_.begin(), shown_.end(), row);
  return found != shown_.end() && *found == row ? static_cast<int>(found - shown_.begin()) : -1;
}

bool SavedRunTable::IsThreshold(int shown) const {
  return hylden::IsThreshold(EntryAt(static_cast<std::size_t>(shown)));
}

std::string SavedRunTable::Cell(std::size_t shown, std::size_t column) const {
  const RunEntry& entry = EntryAt(shown);
  if (column == static_cast<std::size_t>(RunColumn::SigGen) && IsNotHeld(entry)) return "not held";
  return CellsOf(entry)[column];
}

QVariant SavedRunTable::data(const QModelIndex& index, int role) const {
  if (role == Qt::ForegroundRole && RowAt(index.row()) > 0 && IsNotHeld(EntryAt(static_cast<std::size_t>(index.row()))))
    return HighlightRed(QApplication::palette());
  return RowTable::data(index, role);
}

QVariant SavedRunTable::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation == Qt::Vertical && role == Qt::DisplayRole) return RowAt(section);
  return RowTable::headerData(section, orientation, role);
}

}  // namespace hylden
