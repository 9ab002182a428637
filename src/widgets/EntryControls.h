#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>

class QAbstractButton;
class QLineEdit;
class QRadioButton;
class QWidget;

namespace hylden {

class PathLabel;

/// The option buttons of one choice, in the order of their codes.
using Options = std::initializer_list<QRadioButton*>;

/// Chooses or ticks the button. An option that is not chosen may leave its group without a choice.
void SetSelected(QAbstractButton& button, bool selected);
void EnableAll(bool enabled, std::initializer_list<QWidget*> controls);

/// Shows an entry in its control. A form lists its entries beside their controls once; showing and reading walk that
/// list.
struct EntryShower {
  void operator()(PathLabel& label, const std::string& path) const;
  void operator()(QLineEdit& box, const std::string& text) const;
  void operator()(QAbstractButton& button, bool chosen) const;
  void operator()(Options options, std::int32_t code) const;
};

/// Reads an entry back from its control.
struct EntryReader {
  /// Stands for options of which none is chosen; their number when left out.
  std::optional<std::int32_t> NoChoice = {};

  void operator()(const PathLabel& label, std::string& path) const;
  void operator()(const QLineEdit& box, std::string& text) const;
  void operator()(const QAbstractButton& button, bool& chosen) const;
  void operator()(Options options, std::int32_t& code) const;
};

/// Compares the controls with entries, by value.
struct EntryComparer {
  bool& AllSame;  ///< becomes false at the first difference

  void operator()(const PathLabel& label, const std::string& path) const;
  void operator()(const QLineEdit& box, const std::string& text) const;
  void operator()(const QAbstractButton& button, bool chosen) const;
  /// Codes that no option stands for are all the same.
  void operator()(Options options, std::int32_t code) const;
};

}  // namespace hylden
