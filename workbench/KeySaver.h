#pragma once

#include "workbench/KeyForm.h"
#include "workbench/RowEditing.h"
#include "workbench/SaveJob.h"
#include "workbench/StringPane.h"
#include "workbench/TabQueue.h"
#include "workbench/TabState.h"

#include <cstddef>

namespace tarn {

// Writes the form's value to the server: whole, in a short run of commands, in the click and on the main queue. What
// fails half-way leaves what has been done so far, and the form as it is. Main queue only.
class KeySaver final {
public:
  KeySaver(OperationTabLayout& outlets, TabState& state, TabQueue& queue, KeyForm& form, StringPane& string,
           RowEditing& editing);

  // Takes what is being typed into the form, checks it, asks what must be asked, and writes.
  void save();

private:
  // Both are false, after an alert, where there is nothing that can be written.
  bool takeHead(SaveJob& job) const;
  bool takeValue(SaveJob& job);

  // All are false where the answer ends the save.
  bool ask(SaveJob& job) const;
  bool askAboutString(SaveJob& job) const;
  bool askAboutRows(SaveJob& job) const;
  bool askAboutKey(SaveJob& job) const;

  // True if the server took all of it.
  bool saveKeyValue(SaveJob& job);
  // The key's place in the list of keys, out of which a moved one goes.
  std::size_t takeFromKeys(const SaveJob& job);
  void finishSave(const SaveJob& job, std::size_t keyRow);
  bool listShows(int database) const;

  OperationTabLayout& outlets_;
  TabState& state_;
  TabQueue& queue_;
  KeyForm& form_;
  StringPane& string_;
  RowEditing& editing_;
};

}  // namespace tarn
