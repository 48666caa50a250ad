#pragma once

namespace tremor {

// Counts how many calls of a procedure stand inside one another: one more for the life of a block.
class Nesting {
  public:
    explicit Nesting(int& depth) : depth_(depth) { ++depth_; }
    ~Nesting() { --depth_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;

  private:
    int& depth_;
};

} // namespace tremor
