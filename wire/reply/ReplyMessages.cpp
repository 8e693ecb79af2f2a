#include "wire/reply/ReplyMessages.h"

#include "platform/foundation/NSLocalizedString.h"

namespace tarn {

namespace {

using Place = ReplyScanner::Place;

std::string lostMessage(Place place) {
  switch (place) {
    case Place::lengthLine:
      return localizedString("Can not connect to server(738)");
    case Place::countLine:
      return localizedString("Can not connect to server(834)");
    case Place::type:
    case Place::line:
    case Place::payload:
      break;
  }
  return localizedString("Can not connect to server");
}

std::string undecodableMessage(Place place) {
  switch (place) {
    case Place::lengthLine:
      return localizedString("Server reply Error, unrecognized reply(765)");
    case Place::countLine:
      return localizedString("Server reply Error, unrecognized reply(870)");
    case Place::type:
    case Place::line:
    case Place::payload:
      break;
  }
  return localizedString("Server reply Error, unrecognized reply.");
}

}  // namespace

std::string replyFailureMessage(ReplyScanner::Failure failure) {
  switch (failure.fault) {
    case ReplyScanner::Fault::lost:
      return lostMessage(failure.place);
    case ReplyScanner::Fault::undecodable:
      return undecodableMessage(failure.place);
    case ReplyScanner::Fault::tooDeep:
      return elementFailureMessage();
    case ReplyScanner::Fault::unreadable:
      break;
  }
  return failure.place == Place::lengthLine
             ? localizedString("Server reply Error, unrecognized reply count(775)")
             : localizedString("Server reply Error, can not covert data to count value(859)");
}

std::string elementFailureMessage() {
  return localizedString("Get Data from server error(788)");
}

}  // namespace tarn
