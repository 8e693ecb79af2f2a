#pragma once

#include "workbench/WorkbenchTab.h"
#include "workbench/keys/KeyBrowser.h"
#include "workbench/keys/KeyForm.h"
#include "workbench/value/ValuePanes.h"

#include <cstddef>
#include <functional>
#include <string>
#include <utility>

namespace tarn {

// Writes the form's value to the server in the click, while the main queue waits: whole or not at all, where the server
// can. A save that fails leaves the form as it is. Main queue only.
class KeySaver final {
public:
  KeySaver(WorkbenchTab& tab, KeyBrowser& browser, KeyForm& form, ValuePanes& panes);

  // Called when the server has what the form shows.
  void setFormSaved(std::function<void()> formSaved) { formSaved_ = std::move(formSaved); }

  // Takes what is being typed into the form, checks it, asks what must be asked, and writes. The
  // keyboard is then where it was.
  void save();

private:
  struct Job;

  void saveForm();
  void takeAsShown(const Job& job);

  // All are false, after an alert, where there is nothing that can be written.
  bool takeHead(Job& job) const;
  bool takeValue(Job& job);
  bool takeString(Job& job);
  bool takeRows(Job& job);

  // All are false where the answer ends the save.
  bool ask(Job& job);
  bool askAboutValue(Job& job) const;
  bool askAboutString(Job& job) const;
  bool askAboutRows(Job& job) const;
  bool askAboutDoubles(Job& job) const;
  bool askAboutName(Job& job) const;
  bool askAboutExistingKey(Job& job);

  // True if the value is written.
  bool saveKeyValue(Job& job);
  void finishSave(const Job& job, std::size_t keyPosition);
  bool listShows(int database) const;
  std::string awaitedText(const Job& job) const;

  WorkbenchTab& tab_;
  KeyBrowser& browser_;
  KeyForm& form_;
  ValuePanes& panes_;
  std::function<void()> formSaved_;
};

}  // namespace tarn
