#include "wire/reply/ReplyMessages.h"

#include "platform/foundation/NSLocalizedString.h"

namespace tarn {

namespace {

using Piece = ReplyScanner::Piece;

std::string lostMessage(Piece piece) {
  switch (piece) {
    case Piece::lengthLine:
      return localizedString("Can not connect to server(738)");
    case Piece::countLine:
      return localizedString("Can not connect to server(834)");
    case Piece::type:
    case Piece::line:
    case Piece::payload:
      break;
  }
  return localizedString("Can not connect to server");
}

std::string undecodableMessage(Piece piece) {
  switch (piece) {
    case Piece::lengthLine:
      return localizedString("Server reply Error, unrecognized reply(765)");
    case Piece::countLine:
      return localizedString("Server reply Error, unrecognized reply(870)");
    case Piece::type:
    case Piece::line:
    case Piece::payload:
      break;
  }
  return localizedString("Server reply Error, unrecognized reply.");
}

}  // namespace

std::string replyFailureMessage(ReplyScanner::Failure failure) {
  switch (failure.fault) {
    case ReplyScanner::Fault::lost:
      return lostMessage(failure.piece);
    case ReplyScanner::Fault::undecodable:
      return undecodableMessage(failure.piece);
    case ReplyScanner::Fault::tooDeep:
      return elementFailureMessage();
    case ReplyScanner::Fault::unreadable:
      break;
  }
  return failure.piece == Piece::lengthLine
             ? localizedString("Server reply Error, unrecognized reply count(775)")
             : localizedString("Server reply Error, can not covert data to count value(859)");
}

std::string elementFailureMessage() {
  return localizedString("Get Data from server error(788)");
}

}  // namespace tarn
