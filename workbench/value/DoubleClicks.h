#pragma once

namespace tarn {

// Makes a double click of two clicks on one row, whatever the columns, within 1.2 seconds; each further one that comes
// as soon counts as another.
class DoubleClicks final {
public:
  // A click on a row, in seconds since 1970; true if it is a double one.
  bool click(int row, double time) {
    const bool isDouble = row == lastRow_ && time - lastTime_ < seconds;
    lastRow_ = row;
    lastTime_ = time;
    return isDouble;
  }

private:
  static constexpr double seconds = 1.2;

  int lastRow_ = 0;
  double lastTime_ = 0;
};

}  // namespace tarn
