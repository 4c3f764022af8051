#pragma once

#include <string>

namespace Bench {

/// What else ran on this machine since it was made.
class OtherWork {
  public:
    OtherWork();
    /// For example "others kept 0.8 of 2 processors busy".
    std::string Account() const;

  private:
    double wall_;
    double all_;
    double own_;
};

}  // namespace Bench
