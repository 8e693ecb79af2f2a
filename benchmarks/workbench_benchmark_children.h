#pragma once

#include <optional>
#include <string>
#include <vector>

namespace tarn::bench {

// What must be measured in a fresh process: this program starts itself, and the child prints one number.
//
//   --start NANOSECONDS       from that time of the steady clock to the painted main window, in milliseconds
//   --resident-window         resident memory with the main window open, in MB
//   --resident-keys PORT      resident memory per key, in bytes, of listing all keys of the server

// Does what the arguments ask of a child, and answers with its exit status; nothing if they ask nothing.
std::optional<int> runAsChild(int argc, char** argv);

// The number that a child printed. Throws std::runtime_error if it printed none.
double askChild(const std::vector<std::string>& arguments);

// Milliseconds from the start of a process to its painted main window.
double startToPaintedWindow();

}  // namespace tarn::bench
