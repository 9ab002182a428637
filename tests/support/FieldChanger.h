#pragma once

#include <cstdint>
#include <string>

namespace hylden {

/// Changes the n-th field of a record (0 is the first); walks a record's `Fields`.
class FieldChanger {
 public:
  explicit FieldChanger(int target) : target_(target) {}

  void Text(std::string& field) {
    if (Due()) field += ", \"changed\" ";
  }
  void OptionalText(std::string& field) { Text(field); }
  void Int16(std::int16_t& field) { Add(field, std::int16_t{1}); }
  void Int32(std::int32_t& field) { Add(field, 1); }
  /// A code that the program does not know.
  template <class E>
  void Code(E& field) {
    if (Due()) field = static_cast<E>(static_cast<std::int32_t>(field) + 77);
  }
  void Single(float& field) { Add(field, 0.25F); }
  void Double(double& field) { Add(field, 0.125); }
  void Flag(bool& field) {
    if (Due()) field = !field;
  }
  void FlagOrEmpty(bool& field) { Flag(field); }
  void SpareLines(int) {}

  /// Fields seen so far.
  int Count() const { return seen_; }

 private:
  bool Due() { return seen_++ == target_; }
  template <class Number>
  void Add(Number& field, Number step) {
    if (Due()) field = static_cast<Number>(field + step);
  }

  int target_;
  int seen_ = 0;
};

template <class Record>
int FieldCount(Record record) {
  FieldChanger counter(-1);
  Fields(counter, record);
  return counter.Count();
}

/// The record with its n-th field changed.
template <class Record>
Record WithChangedField(Record record, int n) {
  FieldChanger changer(n);
  Fields(changer, record);
  return record;
}

}  // namespace hylden
