#include "script/Value.h"

#include <algorithm>

#include "script/Budget.h"

namespace hylden::script {

Value Value::Text(std::u16string text) {
  static const TextPointer empty = std::make_shared<const std::u16string>();
  if (text.empty()) return Value(Kind::String, empty);
  return Value(Kind::String, std::make_shared<const std::u16string>(std::move(text)));
}

Value Value::Array(std::vector<Value> elements) {
  int nesting = 1;
  for (const Value& element : elements) {
    if (element.Is(Kind::Array)) nesting = std::max(nesting, 1 + std::get<ArrayPointer>(element.data_)->nesting);
  }
  // Freeing nested arrays recurses, so the nesting must stay small.
  if (nesting > kMaxArrayNesting) Raise(Failure::OutOfStackSpace);
  auto data = std::make_shared<ArrayData>();
  data->elements = std::move(elements);
  data->nesting = nesting;
  return Value(Kind::Array, ArrayPointer(std::move(data)));
}

}  // namespace hylden::script
