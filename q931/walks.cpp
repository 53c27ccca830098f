// Which elements each message type accepts, and the one walk over them.
#include <array>
#include <cstdint>
#include <iterator>

#include "common_tables.h"
#include "q931_message.h"

namespace velmora {
namespace {

// The registry entry of an accepted identifier; one the registry lacks
// stops the compilation.
consteval const ElementEntry* Accepted(Octet identifier) { return &*FindElement(identifier); }

// Whole-octet match: all 8 bits equal the identifier.
consteval ElementMatch Whole(Octet identifier) { return {0xFF, identifier, Accepted(identifier)}; }
// Bits 7 to 1 match: bit 8 is ignored (USER INFORMATION, INFORMATION).
consteval ElementMatch Low7(Octet identifier) {
  return {0x7F, static_cast<Octet>(identifier & 0x7F), Accepted(identifier)};
}

constexpr ElementMatch kAlerting[] = {Whole(0x04), Whole(0x18), Whole(0x1E), Whole(0x28), Whole(0x34), Whole(0x7D)};
constexpr ElementMatch kCallProceeding[] = {Whole(0x04), Whole(0x18), Whole(0x1E), Whole(0x28), Whole(0x7D)};
constexpr ElementMatch kProgress[] = {Whole(0x04), Whole(0x08), Whole(0x1E), Whole(0x28), Whole(0x7D)};
// SETUP also takes two kinds of single octet: Repeat indicator (1101 xxxx)
// and Sending complete (1010 0001); every other single octet is unknown.
constexpr ElementMatch kSetup[] = {
    {0xF0, 0xD0, Accepted(0xD0)},
    Whole(0xA1),
    Whole(0x04),
    Whole(0x18),
    Whole(0x1E),
    Whole(0x20),
    Whole(0x28),
    Whole(0x29),
    Whole(0x2C),
    Whole(0x34),
    Whole(0x40),
    Whole(0x42),
    Whole(0x43),
    Whole(0x44),
    Whole(0x45),
    Whole(0x46),
    Whole(0x47),
    Whole(0x4A),
    Whole(0x6C),
    Whole(0x6D),
    Whole(0x70),
    Whole(0x71),
    Whole(0x74),
    Whole(0x78),
    Whole(0x7C),
    Whole(0x7D),
    Whole(0x7E),
};
constexpr ElementMatch kConnect[] = {Whole(0x04), Whole(0x18), Whole(0x1E), Whole(0x28),
                                     Whole(0x29), Whole(0x34), Whole(0x7C), Whole(0x7D)};
constexpr ElementMatch kSetupAcknowledge[] = {Whole(0x18), Whole(0x1E), Whole(0x28), Whole(0x34)};
constexpr ElementMatch kConnectAcknowledge[] = {Whole(0x28), Whole(0x34)};
constexpr ElementMatch kUserInformation[] = {Low7(0xA0), Low7(0x7E)};
// SUSPEND REJECT and RESUME REJECT.
constexpr ElementMatch kSuspendResumeReject[] = {Whole(0x08), Whole(0x28)};
// SUSPEND and RESUME.
constexpr ElementMatch kSuspendResume[] = {Whole(0x10)};
// SUSPEND ACKNOWLEDGE and STATUS ENQUIRY.
constexpr ElementMatch kDisplayOnly[] = {Whole(0x28)};
constexpr ElementMatch kResumeAcknowledge[] = {Whole(0x18), Whole(0x28)};
constexpr ElementMatch kDisconnect[] = {Whole(0x08), Whole(0x1E), Whole(0x28), Whole(0x34), Whole(0x7E)};
// RESTART and RESTART ACKNOWLEDGE.
constexpr ElementMatch kRestart[] = {Whole(0x18), Whole(0x28), Whole(0x79)};
// RELEASE and RELEASE COMPLETE.
constexpr ElementMatch kRelease[] = {Whole(0x08), Whole(0x28), Whole(0x34), Whole(0x7E)};
constexpr ElementMatch kNotify[] = {Whole(0x04), Whole(0x27), Whole(0x28)};
// Bits 7 to 5 of 011 (0x30 to 0x3F, 0xB0 to 0xBF) are a Congestion level,
// whatever bit 8 says; it is tested first.
constexpr ElementMatch kCongestionControl[] = {{0x70, 0x30, Accepted(0xB0)}, Whole(0x08), Whole(0x28)};
constexpr ElementMatch kInformation[] = {Low7(0x08), Low7(0xA1), Low7(0x28), Low7(0x2C), Low7(0x34), Low7(0x70)};
constexpr ElementMatch kStatus[] = {Whole(0x08), Whole(0x14), Whole(0x28)};

// The row of a message type, named as the shared table names it.
constexpr MessageWalk Walk(Octet value, std::span<const ElementMatch> accepted, bool walked = true) {
  return {value, FindRow(kMessageTypeNames, value)->text, accepted, walked};
}

constexpr MessageWalk kMessageWalks[] = {
    Walk(0x01, kAlerting),
    Walk(0x02, kCallProceeding),
    Walk(0x03, kProgress),
    Walk(0x05, kSetup),
    Walk(0x07, kConnect),
    Walk(0x0D, kSetupAcknowledge),
    Walk(0x0F, kConnectAcknowledge),
    Walk(0x20, kUserInformation),
    Walk(0x21, kSuspendResumeReject),
    Walk(0x22, kSuspendResumeReject),
    Walk(0x25, kSuspendResume),
    Walk(0x26, kSuspendResume),
    Walk(0x2D, kDisplayOnly),
    Walk(0x2E, kResumeAcknowledge),
    Walk(0x45, kDisconnect),
    Walk(0x46, kRestart),
    Walk(0x4D, kRelease),
    Walk(0x4E, kRestart),
    Walk(0x5A, kRelease),
    // A SEGMENT shows its name line and none of its elements.
    Walk(0x60, {}, false),
    Walk(0x6E, kNotify),
    Walk(0x75, kDisplayOnly),
    Walk(0x79, kCongestionControl),
    Walk(0x7B, kInformation),
    Walk(0x7D, kStatus),
};

// The walk of each message type octet: its index in kMessageWalks plus one, 0 for none.
constexpr std::array<std::uint8_t, 256> kWalkByType = [] {
  std::array<std::uint8_t, 256> byType{};
  for (std::size_t index = 0; index < std::size(kMessageWalks); ++index)
    byType[kMessageWalks[index].value] = static_cast<std::uint8_t>(index + 1);
  return byType;
}();

}  // namespace

const MessageWalk* FindMessageWalk(Octet value) {
  return kWalkByType[value] == 0 ? nullptr : &kMessageWalks[kWalkByType[value] - 1];
}

void WalkElements(OutputWriter& out, const MessageWalk& walk, OctetSpan fromMessageType) {
  ForEachElement(walk, fromMessageType, [&out](const ElementEntry* entry, const ElementOctets& element) {
    if (FieldSink* fields = out.Fields())
      fields->Element(out.BytesWritten(), element.First(OccupiedOctets(entry, element)));
    DecodeElement(out, entry, element, ElementPrefix::Printed);
  });
}

}  // namespace velmora
