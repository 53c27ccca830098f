#include "field_text.h"
#include "q931_message.h"

namespace velmora {

// The message type stands at crl + 2, crl being the whole octet 1.
std::optional<Q931Header> ReadQ931Header(OctetSpan message) {
  if (message.size() < 2) return std::nullopt;
  const std::size_t typePosition = static_cast<std::size_t>(message[1]) + 2;
  if (typePosition >= message.size()) return std::nullopt;
  return Q931Header{message.subspan(2, typePosition - 2), message[typePosition], message.subspan(typePosition)};
}

void DecodeQ931Message(OutputWriter& out, OctetSpan message, bool detailed) {
  const std::optional<Q931Header> header = ReadQ931Header(message);
  if (!header) {
    out.Put(kMessageTypePrefix);
    out.Put("Truncated message\n");
    return;
  }
  if (detailed) return DecodeQ931InDetail(out, *header);
  // An unknown type prints nothing more, not even a line end: the copy of
  // the next input line continues the open "Message type:" line.
  const MessageWalk* walk = FindMessageWalk(header->messageType);
  if (walk == nullptr) {
    out.Put(kMessageTypePrefix);
    return;
  }
  out.PutPadded(walk->typeLine.Padded());
  WalkElements(out, *walk, header->fromMessageType);
}

}  // namespace velmora
