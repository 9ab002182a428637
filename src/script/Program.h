#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "script/FunctionTable.h"
#include "script/Operators.h"
#include "script/Value.h"

namespace hylden::script {

/// What one instruction does to the stack of values.
enum class Action : std::uint8_t {
  PushConstant,    ///< constants[index]
  PushVariable,    ///< the variable in slot index
  PushRetString,   ///< the library object's RetString
  CallFunction,    ///< replaces count arguments by the result of function
  TakeElement,     ///< replaces an array and count subscripts by the element; names[index] is the array as written
  TakeMember,      ///< replaces an object by its member names[index]; names[count] is the object as written
  Negate,          ///< replaces the top
  Complement,      ///< replaces the top
  Calculate,       ///< replaces two values by the arithmetic operation
  Combine,         ///< replaces two values by the logical operation
  Compare,         ///< replaces two values by the comparison
  CompareObjects,  ///< replaces two values by whether they are the same object
  StoreVariable,   ///< moves the top, a plain value, to the slot index
  StoreObject,     ///< moves the top, an object or Nothing, to the slot index
  StoreRetString,  ///< moves the top to the library object's RetString
  RaiseFailure,    ///< failure number count with names[index] as its context
};

inline constexpr std::uint32_t kNoName = 0xFFFFFFFF;

struct Instruction {
  Action action = Action::PushConstant;
  Operator operation = Operator::Add;
  bool leftIsLiteral = false, rightIsLiteral = false;
  std::uint32_t count = 0;
  std::uint32_t index = kNoName;
  std::uint32_t at = kNoName;  ///< where in the source a failure of it is shown
  const FunctionEntry* function = nullptr;
};

/// A parsed expression or assignment: instructions for a stack of values, operands before their operator. Running it
/// needs no recursion, however long the expression is.
struct Program {
  std::vector<Instruction> steps;
  std::vector<Value> constants;
  std::vector<std::string> names;
};

}  // namespace hylden::script
