#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "documents/CurveFile.h"
#include "shell/Failure.h"

namespace hylden {

class Shell;

/// The kinds of files that are laid over each other.
enum class CurveKind { Calibration, InsertionLoss };

/// What is shown of the files.
struct CurveChoice {
  std::optional<std::size_t> Quantity = 0;  ///< one of Quantities(); nothing: all of them
  bool Difference = false;                  ///< to the first file
  bool FullNames = false;                   ///< a curve's name tells file and quantity, also where one is clear
};

/// Files of one kind, laid over the first of them.
class CurveOverlay {
 public:
  /// The first file and five others.
  static constexpr std::size_t kMost = 6;

  CurveOverlay(Shell& shell, CurveKind kind) : shell_(shell), kind_(kind) {}

  /// Adds a file. One that is none of its kind, that is shown already, that has no frequency in common with the first,
  /// or that would be one too many is refused, and what is shown stays.
  Done Add(const std::string& path);
  void Remove(std::size_t file);
  /// The others are compared with this one from now on.
  void MakeFirst(std::size_t file);

  std::size_t Size() const { return files_.size(); }
  const CurveFile& File(std::size_t file) const { return *files_[file]; }
  /// A name that no other file of them has, as short as possible.
  std::string NameOf(std::size_t file) const;
  const std::vector<CurveQuantity>& Quantities() const { return files_.front()->Quantities(); }

  /// The curves of each file in turn. A difference is what a file has more than the first one, in dB, at those of the
  /// first one's frequencies that it covers, each time from what a run looks up there.
  std::vector<Curve> Curves(const CurveChoice& choice) const;
  /// What a file comes to: "-12.87 to -10.95 dBm", "-3 dB at 27 MHz" (the largest difference).
  std::string SummaryOf(std::size_t file, const CurveChoice& choice) const;

 private:
  Result<std::unique_ptr<CurveFile>> Load(const std::string& path) const;
  Done CheckCommon(const CurveFile& other) const;
  Curve CurveOf(std::size_t file, std::size_t quantity, const CurveChoice& choice) const;
  std::string CurveName(std::size_t file, std::size_t quantity, const CurveChoice& choice) const;

  Shell& shell_;
  CurveKind kind_;
  std::vector<std::unique_ptr<CurveFile>> files_;
};

}  // namespace hylden
