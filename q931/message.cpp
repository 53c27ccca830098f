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

namespace {

constexpr ValueText kCallReferenceFlag[] = {
    {0, "from the originating side"},
    {1, "to the originating side"},
};

// "\tCall reference=<value>  length <n>, flag <f>  <meaning>".
void PrintCallReference(OutputWriter& out, OctetSpan reference) {
  out.Put("\tCall reference");
  if (reference.empty()) {
    out.Put(": dummy (length 0)\n");
    return;
  }
  out.Put("=");
  if (const std::optional<std::uint64_t> value = CallReferenceValue(reference)) {
    out.Decimal(static_cast<std::int64_t>(*value));
  } else {
    for (const Octet octet : reference) out.SpaceHex(octet);
  }
  out.Put("  length ");
  out.Decimal(static_cast<std::int64_t>(reference.size()));
  const unsigned flag = CallReferenceFlag(reference);
  out.Put(", flag=");
  out.Bits(flag, 1);
  out.Put("  ");
  if (const ValueText* row = FindRow(kCallReferenceFlag, flag)) out.Put(row->text);
  out.Put('\n');
}

}  // namespace

void DecodeQ931Message(OutputWriter& out, OctetSpan message, bool detailed) {
  const std::optional<Q931Header> header = ReadQ931Header(message);
  if (!header) {
    out.Put(kMessageTypePrefix);
    out.Put("Truncated message\n");
    return;
  }
  // An unknown type prints nothing more, not even a line end: the copy of
  // the next input line continues the open "Message type:" line.
  const MessageWalk* walk = FindMessageWalk(header->messageType);
  if (walk == nullptr) {
    out.Put(kMessageTypePrefix);
    if (detailed) {
      out.Put("message type");
      out.SpaceHex(header->messageType);
      out.Put(" (no name)\n");
      PrintCallReference(out, header->callReference);
    }
    return;
  }
  out.PutPadded(walk->typeLine.Padded());
  if (detailed) PrintCallReference(out, header->callReference);
  WalkElements(out, *walk, header->fromMessageType);
}

}  // namespace velmora
