#pragma once

namespace tarn::bench {

struct SaveTimes {
  // Milliseconds from the click to "Saved.".
  double save = 0;
  // Milliseconds of sending the same bytes over a plain socket and awaiting the replies.
  double floor = 0;
};

// The middle ones of several rounds, over the list of a million rows that `key` holds on the server at this port.
SaveTimes timesOfSaving(int port, const char* key);

}  // namespace tarn::bench
