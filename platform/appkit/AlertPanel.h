#pragma once

namespace tarn {

class NSAlert;

// Shows the alert over the whole program and waits for its answer. An open menu closes first. Inside a change of focus
// it answers firstButtonReturn at once, and the alert is shown when that change has ended.
int runAlertPanel(const NSAlert& alert);

}  // namespace tarn
