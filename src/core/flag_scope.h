#pragma once

namespace tremor {

// Sets a flag for a scope and gives it its old value back, also when an exception leaves the scope.
class FlagScope {
  public:
    explicit FlagScope(bool& flag) : flag_(flag), before_(flag) { flag_ = true; }
    ~FlagScope() { flag_ = before_; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

  private:
    bool& flag_;
    bool before_;
};

} // namespace tremor
