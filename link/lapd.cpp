#include "lapd.h"

#include <string_view>

#include "q931_message.h"

namespace velmora {
namespace {

constexpr std::string_view kLayer2 = "ISDN Layer 2: ";
constexpr std::string_view kTruncated = "Truncated frame\n";
constexpr std::string_view kInformationFrame = "Information transfer\nISDN Layer 3: ";
// The lines of most frames, printed together.
constexpr PaddedText<80> kQ931InformationFrame{kLayer2, kInformationFrame, "Q.931 protocol message\n"};

// Supervisory frames: control octet AND 0x0C. 0x0C names no frame and
// leaves the line open, without its line end.
constexpr std::string_view kSupervisory[4] = {
    "RR(receive ready)\n",
    "RNR(receive not ready)\n",
    "REJ(reject)\n",
    "",
};

// What an unnumbered frame does with the link memory.
enum class LinkUse { None, Set, Clear, ReadForUa };

// Unnumbered frames: m = bits 8, 7, 6, 4 and 3 of the control octet (the
// poll/final bit 5 takes no part).
struct UnnumberedFrame {
  Octet m;
  std::string_view text;
  LinkUse use;
};
constexpr UnnumberedFrame kUnnumbered[] = {
    {0, "UI(unnumbered information)\n", LinkUse::None},
    {3, "DM(disconnected mode), Can't establish link\n", LinkUse::None},
    {16, "DISC(disconnect), Disconnect link\n", LinkUse::Clear},
    {24, "UA(unnumbered acknowledgement), ", LinkUse::ReadForUa},
    {27, "SABME(set asynchronous balanced mode extended), Request to establish link\n", LinkUse::Set},
    {33, "FRMR(frame reject)\n", LinkUse::None},
    {43, "XID(Exchange Identification)\n", LinkUse::None},
};

constexpr Octet UnnumberedKind(Octet control) { return static_cast<Octet>((control & 0xEC) >> 2); }

void DecodeUnnumbered(DecodeContext& context, Octet control) {
  const Octet m = UnnumberedKind(control);
  for (const UnnumberedFrame& frame : kUnnumbered) {
    if (frame.m != m) continue;
    context.out.Put(frame.text);
    switch (frame.use) {
      case LinkUse::None:
        break;
      case LinkUse::Set:
        context.linkSetup = LinkSetup::Pending;
        break;
      case LinkUse::Clear:
        context.linkSetup = LinkSetup::NotPending;
        break;
      case LinkUse::ReadForUa:
        if (context.linkSetup == LinkSetup::Unknown && context.pendingUaWordings != nullptr)
          context.pendingUaWordings->push_back(context.out.BytesWritten());
        context.out.Put(context.linkSetup == LinkSetup::Pending ? kUaAfterSabme : kUaAfterDisc);
        break;
    }
    return;
  }
  // Any other m prints nothing: the layer-2 line stays open.
}

}  // namespace

void DecodeLapdFrame(DecodeContext& context, OctetSpan frame) {
  OutputWriter& out = context.out;
  // Octets 1 and 2 are the address; without octet 3 there is no control field.
  if (frame.size() < 3) {
    out.Put(kLayer2);
    out.Put(kTruncated);
    return;
  }
  const Octet control = frame[2];
  if ((control & 0x01) == 0) {
    // The protocol discriminator is octet 5; a frame that ends before it has none.
    if (frame.size() >= 5 && IsQ931Discriminator(frame[4])) {
      out.PutPadded(kQ931InformationFrame.Padded());
      DecodeQ931Message(out, frame.subspan(4));
      return;
    }
    out.Put(kLayer2);
    out.Put(kInformationFrame);
    out.Put(frame.size() < 5 ? kTruncated : "Unknown protocol message\n");
    return;
  }
  out.Put(kLayer2);
  if ((control & 0x02) == 0) {
    out.Put("Supervisory  ");
    out.Put(kSupervisory[(control & 0x0C) >> 2]);
  } else {
    DecodeUnnumbered(context, control);
  }
}

}  // namespace velmora
