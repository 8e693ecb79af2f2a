#pragma once

#include <string>

namespace tarn {

// Where a server is, and what it asks of whoever connects.
struct ServerAddress {
  // What messages call it.
  std::string name;
  // As the user typed it: a name to be resolved, or a number.
  std::string host;
  int port = 0;
  // Empty where the server asks for none.
  std::string password;
};

}  // namespace tarn
