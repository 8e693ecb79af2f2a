#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tarn {

// A question or message that the user must answer before the program goes on. It is declared here, where every layer
// can raise one; whoever owns the screen installs the presenter that shows it, and a test installs one that answers.
// Main thread only.
class NSAlert final {
public:
  enum class Style { warning = 0, informational = 1, critical = 2 };

  // What runModal answers for the first and second button; further buttons count on.
  static constexpr int firstButtonReturn = 1000;
  static constexpr int secondButtonReturn = 1001;

  using Presenter = std::function<int(const NSAlert&)>;

  void setMessageText(std::string text);
  void setInformativeText(std::string text);
  void setAlertStyle(Style style);
  // The first one added is the default. An alert without buttons shows one, "OK".
  void addButtonWithTitle(std::string title);

  const std::string& messageText() const { return messageText_; }
  const std::string& informativeText() const { return informativeText_; }
  Style alertStyle() const { return style_; }
  const std::vector<std::string>& buttonTitles() const { return buttonTitles_; }

  // Shows the alert, waits, and answers with the number of the button pressed. Without a presenter the message goes to
  // the log and the answer is firstButtonReturn.
  int runModal() const;

  // Answers with the presenter in force before.
  static Presenter setPresenter(Presenter presenter);

private:
  std::string messageText_;
  std::string informativeText_;
  Style style_ = Style::warning;
  std::vector<std::string> buttonTitles_;
};

// The usual alert: one message, perhaps more to say under it, and one button.
void showAlert(std::string message, std::string informative = {});

// The same, later, on the main queue. Any thread.
void postAlert(std::string message);

// A question with these buttons: answers as runModal does.
int askUser(std::string message, std::string informative, std::vector<std::string> buttons);

}  // namespace tarn
