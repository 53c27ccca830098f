#include "q931_message.h"

namespace velmora {

// Header: protocol discriminator (0), call reference length (1), the call
// reference value, then the message type at crl + 2. The whole octet 1 is
// the length; bits 8 to 5 are not masked off.
void DecodeQ931Message(OutputWriter& out, OctetSpan message) {
  const std::size_t typePosition = message.size() < 2 ? message.size() : static_cast<std::size_t>(message[1]) + 2;
  if (typePosition >= message.size()) {
    out.Put(kMessageTypePrefix);
    out.Put("Truncated message\n");
    return;
  }
  // An unknown type prints nothing more, not even a line end: the copy of
  // the next input line continues the open "Message type:" line.
  const MessageWalk* walk = FindMessageWalk(message[typePosition]);
  if (walk == nullptr) {
    out.Put(kMessageTypePrefix);
    return;
  }
  out.PutPadded(walk->typeLine.View());
  WalkElements(out, *walk, message.subspan(typePosition));
}

}  // namespace velmora
