// --detail full: the address and control fields under the layer-2 line,
// TEI management, Q.931 in UI frames and the call reference; the same
// frames at the default level as described. Expected texts written by hand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "decode_context.h"
#include "lapd.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;

std::string Decode(const std::vector<Octet>& frame, DetailLevel detail) {
  return CaptureOutput([&](OutputWriter& out) {
    DecodeContext context{out};
    context.detail = detail;
    DecodeLapdFrame(context, frame);
  });
}

TEST(DetailLevel, AddressAndControlUnderTheLayer2Line) {
  struct Row {
    std::vector<Octet> frame;
    std::string full;
  };
  const Row rows[] = {
      // An I frame from the network side to TEI 64, N(S)=1, N(R)=3, P=1, CONNECT with call reference 0x81 (flag 1).
      {{0x02, 0x81, 0x02, 0x07, 0x08, 0x01, 0x81, 0x07},
       "ISDN Layer 2: Information transfer\n"
       "\tSAPI=0 (call control procedures)  TEI=64  C/R=1 (command from the network side)  N(S)=1  N(R)=3  P=1\n"
       "ISDN Layer 3: Q.931 protocol message\n"
       "Message type:CONNECT\n"
       "\tCall reference=1  length 1, flag=1  to the originating side\n"},
      // RR with N(R)=5, F=1: a supervisory frame is a command or a response.
      {{0x00, 0x83, 0x01, 0x0B},
       "ISDN Layer 2: Supervisory  RR(receive ready)\n"
       "\tSAPI=0 (call control procedures)  TEI=65  C/R=0 (command from the user side or response from the network "
       "side)  N(R)=5  P/F=1\n"},
      // DM, a response: F.
      {{0x02, 0x81, 0x1F},
       "ISDN Layer 2: DM(disconnected mode), Can't establish link\n"
       "\tSAPI=0 (call control procedures)  TEI=64  C/R=1 (response from the user side)  F=1\n"},
      // A control octet that names no frame: at this level the line is closed.
      {{0x00, 0x81, 0xEF},
       "ISDN Layer 2: (control octet names no frame)\n"
       "\tSAPI=0 (call control procedures)  TEI=64  C/R=0 (command from the user side or response from the network "
       "side)  P=0\n"},
      // TEI management: identity assigned, Ri 0x2C51, Ai 64; and a request for any TEI.
      {{0xFE, 0xFF, 0x03, 0x0F, 0x2C, 0x51, 0x02, 0x81},
       "ISDN Layer 2: UI(unnumbered information)\n"
       "\tSAPI=63 (layer 2 management procedures)  TEI=127 (broadcast)  C/R=1 (command from the network side)  P=0\n"
       "ISDN Layer 3: TEI management\n"
       "\tMessage type=00000010  Identity assigned\n"
       "\t\tReference number Ri=11345\n"
       "\t\tAction indicator Ai=1000000  TEI 64\n"},
      {{0xFC, 0xFF, 0x03, 0x0F, 0x00, 0x07, 0x01, 0xFF},
       "ISDN Layer 2: UI(unnumbered information)\n"
       "\tSAPI=63 (layer 2 management procedures)  TEI=127 (broadcast)  C/R=0 (command from the user side)  P=0\n"
       "ISDN Layer 3: TEI management\n"
       "\tMessage type=00000001  Identity request\n"
       "\t\tReference number Ri=7\n"
       "\t\tAction indicator Ai=1111111  Any TEI value acceptable\n"},
      // A SETUP broadcast in a UI frame, decoded like an I frame's; call reference 0x05 of two octets.
      {{0x02, 0xFF, 0x03, 0x08, 0x02, 0x00, 0x05, 0x05, 0xA1},
       "ISDN Layer 2: UI(unnumbered information)\n"
       "\tSAPI=0 (call control procedures)  TEI=127 (broadcast)  C/R=1 (command from the network side)  P=0\n"
       "ISDN Layer 3: Q.931 protocol message\n"
       "Message type:SETUP\n"
       "\tCall reference=5  length 2, flag=0  from the originating side\n"
       "\tInformation element:Sending complete\n"},
      // A message type without a name gets a whole line; the dummy call reference.
      {{0x00, 0x81, 0x00, 0x00, 0x08, 0x00, 0x62},
       "ISDN Layer 2: Information transfer\n"
       "\tSAPI=0 (call control procedures)  TEI=64  C/R=0 (command from the user side)  N(S)=0  N(R)=0  P=0\n"
       "ISDN Layer 3: Q.931 protocol message\n"
       "Message type:message type 0x62 (no name)\n"
       "\tCall reference: dummy (length 0)\n"},
      // Cut short: only what the frame holds.
      {{0x00, 0x81, 0x00},
       "ISDN Layer 2: Information transfer\n"
       "\tSAPI=0 (call control procedures)  TEI=64  C/R=0 (command from the user side)  N(S)=0\n"
       "ISDN Layer 3: Truncated frame\n"},
      {{0x00, 0x81}, "ISDN Layer 2: Truncated frame\n"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.full.substr(0, 60));
    EXPECT_EQ(Decode(row.frame, DetailLevel::Full), row.full);
  }
}

// The default level stays as described for the same kinds of frame: no
// address line, no TEI management, no Q.931 in a UI frame, an unnamed type
// and an unnamed control octet left open.
TEST(DetailLevel, DefaultLevelAsDescribed) {
  EXPECT_EQ(Decode({0xFE, 0xFF, 0x03, 0x0F, 0x2C, 0x51, 0x02, 0x81}, DetailLevel::Description),
            "ISDN Layer 2: UI(unnumbered information)\n");
  EXPECT_EQ(Decode({0x02, 0xFF, 0x03, 0x08, 0x01, 0x05, 0x05, 0xA1}, DetailLevel::Description),
            "ISDN Layer 2: UI(unnumbered information)\n");
  EXPECT_EQ(Decode({0x00, 0x81, 0x00, 0x00, 0x08, 0x00, 0x62}, DetailLevel::Description),
            "ISDN Layer 2: Information transfer\nISDN Layer 3: Q.931 protocol message\nMessage type:");
  EXPECT_EQ(Decode({0x00, 0x81, 0xEF}, DetailLevel::Description), "ISDN Layer 2: ");
}

}  // namespace
}  // namespace velmora
