#pragma once

namespace tarn {

// The one object of a layer above that a lower one asks something of. The lower layer declares Host, derived from this,
// as the interface; the higher one implements it and installs itself for as long as it lives. Main thread.
template <typename Host>
class InstalledHost {
public:
  // May be null.
  static Host* installed() { return host_; }
  static void install(Host* host) { host_ = host; }

private:
  static inline Host* host_ = nullptr;
};

}  // namespace tarn
