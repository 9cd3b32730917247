#pragma once

namespace vesko {

/// Measures how long things take. It has nothing to do with the time of day.
class Clock {
 public:
  virtual ~Clock() = default;

  /// Returns the seconds since some fixed moment, with fractions. Never runs backwards, and is not
  /// moved by a change of the time of day.
  virtual double Seconds() const = 0;
};

}  // namespace vesko
