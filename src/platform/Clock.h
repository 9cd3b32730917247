#pragma once

namespace vesko {

class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since some fixed moment, with fractions; never runs backwards.
  virtual double Seconds() const = 0;
};

}  // namespace vesko
