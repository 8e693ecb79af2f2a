#pragma once

#include "workbench/WorkbenchTab.h"
#include "workbench/keys/KeyBrowser.h"
#include "workbench/keys/KeyForm.h"
#include "workbench/value/ValuePanes.h"

#include <cstddef>

namespace tarn {

// Writes the form's value to the server: whole, in a short run of commands, in the click and on the main queue. What
// fails half-way leaves what has been done so far, and the form as it is. Main queue only.
class KeySaver final {
public:
  KeySaver(WorkbenchTab& tab, KeyBrowser& browser, KeyForm& form, ValuePanes& panes);

  // Takes what is being typed into the form, checks it, asks what must be asked, and writes.
  void save();

private:
  struct Job;

  // All are false, after an alert, where there is nothing that can be written.
  bool takeHead(Job& job) const;
  bool takeValue(Job& job);
  bool takeString(Job& job);
  bool takeRows(Job& job);

  // All are false where the answer ends the save.
  bool ask(Job& job) const;
  bool askAboutString(Job& job) const;
  bool askAboutRows(Job& job) const;
  bool askAboutKey(Job& job) const;

  // True if the server took all of it.
  bool saveKeyValue(Job& job);
  void finishSave(const Job& job, std::size_t keyPosition);
  bool listShows(int database) const;

  WorkbenchTab& tab_;
  KeyBrowser& browser_;
  KeyForm& form_;
  ValuePanes& panes_;
};

}  // namespace tarn
