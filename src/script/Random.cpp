#include "script/Random.h"

#include <bit>

namespace hylden::script {

float Random::Next() {
  state_ = (state_ * 0x43FD43FDu + 0xC39EC3u) & 0xFFFFFFu;
  return Last();
}

float Random::Last() const {
  return static_cast<float>(state_) / 16777216.0f;
}

void Random::Restart(float number) {
  const auto bits = std::bit_cast<std::uint32_t>(number);
  state_ = (bits + (bits >> 24)) & 0xFFFFFFu;
}

void Random::Mix(float number) {
  const auto bits = std::bit_cast<std::uint32_t>(number);
  state_ = (state_ & 0xFFu) | (((bits ^ (bits >> 16)) & 0xFFFFu) << 8);
}

}  // namespace hylden::script
