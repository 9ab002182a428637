#pragma once

namespace hylden {

/// Holds a flag up while it lives.
class FlagRaised {
 public:
  explicit FlagRaised(bool& flag) : flag_(flag) { flag_ = true; }
  ~FlagRaised() { flag_ = false; }
  FlagRaised(const FlagRaised&) = delete;
  FlagRaised& operator=(const FlagRaised&) = delete;

 private:
  bool& flag_;
};

}  // namespace hylden
