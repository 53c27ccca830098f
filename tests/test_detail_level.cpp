// --detail full: the address and control fields under the layer-2 line,
// TEI management, Q.931 in UI frames and the call reference; Q.932
// messages, Facility, codesets and readable values; the same frames at
// the default level as described. Expected texts written by hand.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "decode_context.h"
#include "lapd.h"
#include "q931_message.h"
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
      {{0x00, 0x81, 0x00, 0x00, 0x08, 0x00, 0x3F},
       "ISDN Layer 2: Information transfer\n"
       "\tSAPI=0 (call control procedures)  TEI=64  C/R=0 (command from the user side)  N(S)=0  N(R)=0  P=0\n"
       "ISDN Layer 3: Q.931 protocol message\n"
       "Message type:message type 0x3f (no name)\n"
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

// The message layer alone, from the protocol discriminator on.
std::string DecodeMessage(const std::vector<Octet>& message, DetailLevel detail) {
  return CaptureOutput([&](OutputWriter& out) { DecodeQ931Message(out, message, detail == DetailLevel::Full); });
}

const std::string kHead = "\tCall reference=5  length 1, flag=0  from the originating side\n";

TEST(DetailLevel, Q932MessagesTakeTheirOwnElements) {
  // RETRIEVE ACKNOWLEDGE: Channel identification and Display; a Cause is not among them.
  EXPECT_EQ(DecodeMessage({0x08, 0x01, 0x05, 0x33, 0x18, 0x01, 0x89, 0x08, 0x02, 0x80, 0x90}, DetailLevel::Full),
            "Message type:RETRIEVE ACKNOWLEDGE\n" + kHead +
                "\tInformation element:Channel identification\n"
                "\t\tInterface identifier present=0  Interface implicitly identified\n"
                "\t\tInterface type=0  Basic interface\n"
                "\t\tPreferred/Exclusive=1  Exclusive; only the indicated channel is acceptable\n"
                "\t\tD-channel indicator=0  The channel identified is not the D-channel\n"
                "\t\tInformation channel selection=01  B1 channel\n"
                "\tInformation element:Unknown ( 0x8 0x2 0x80 0x90 )\n");
  // HOLD REJECT with a Cause: the readable number behind its lines.
  EXPECT_EQ(DecodeMessage({0x08, 0x01, 0x05, 0x30, 0x08, 0x02, 0x80, 0xD1}, DetailLevel::Full),
            "Message type:HOLD REJECT\n" + kHead +
                "\tInformation element:Cause\n"
                "\t\tCoding standard=00  ITU-T standardized coding\n"
                "\t\tLocation=0000  user (U)\n"
                "\t\tCause Class=101  invalid message\n"
                "\t\tCause Value=0001  Invalid call reference value\n"
                "\t\tCause number=#81  Invalid call reference value\n");
  // A type without a name at either level: its elements, whatever they are, decoded.
  EXPECT_EQ(DecodeMessage({0x08, 0x01, 0x05, 0x3F, 0x28, 0x01, 0x41}, DetailLevel::Full),
            "Message type:message type 0x3f (no name)\n" + kHead +
                "\tInformation element:Display\n\t\tDisplay information(IA5)= 0x41\n");
  // At the default level FACILITY has no name and leaves its line open.
  EXPECT_EQ(DecodeMessage({0x08, 0x01, 0x05, 0x62, 0x1C, 0x01, 0x91}, DetailLevel::Description), "Message type:");
}

TEST(DetailLevel, ShiftsAndOtherCodesets) {
  // A locking shift to 6, a codeset-6 element 0x08 (no Cause), a
  // non-locking shift to 5 for one element, then codeset 6 again.
  EXPECT_EQ(
      DecodeMessage({0x08, 0x01, 0x05, 0x45, 0x96, 0x08, 0x02, 0x12, 0x34, 0x9D, 0x08, 0x01, 0x55, 0x1E, 0x00, 0xA1},
                    DetailLevel::Full),
      "Message type:DISCONNECT\n" + kHead +
          "\tInformation element:Shift\n"
          "\t\tShift procedure=0  Locking shift\n"
          "\t\tNew codeset identification=110  Codeset 6: information elements specific to the local network\n"
          "\tInformation element:codeset 6 element 0x08\n"
          "\t\tOctets= 0x8 0x2 0x12 0x34\n"
          "\tInformation element:Shift\n"
          "\t\tShift procedure=1  Non-locking shift\n"
          "\t\tNew codeset identification=101  Codeset 5: information elements for national use\n"
          "\tInformation element:codeset 5 element 0x08\n"
          "\t\tOctets= 0x8 0x1 0x55\n"
          "\tInformation element:codeset 6 element 0x1e\n"
          "\t\tOctets= 0x1e 0x0\n"
          "\tInformation element:codeset 6 element 0xa1\n"
          "\t\tOctets= 0xa1\n");
}

TEST(DetailLevel, ReadableNumbersCausesAndTimers) {
  // CONNECT with a Connected number (octet 3a present) whose digits hold a quote.
  EXPECT_EQ(DecodeMessage({0x08, 0x01, 0x85, 0x07, 0x4C, 0x06, 0x01, 0x80, 0x33, 0x22, 0x34, 0x07}, DetailLevel::Full),
            "Message type:CONNECT\n"
            "\tCall reference=5  length 1, flag=1  to the originating side\n"
            "\tInformation element:Connected number\n"
            "\t\tType of number=000  Unknown\n"
            "\t\tNumbering plan identification=0001  ISDN/telephony numbering plan (Recommendation E.164 [19])\n"
            "\t\tPresentation indicator=00  Presentation allowed\n"
            "\t\tScreening indicator=00  User-provided, not screened\n"
            "\t\tNumber digits (IA5)= 0x33 0x22 0x34 0x7\n"
            "\t\tNumber as text=3\"4<0x7>\n");
  // Recovery on timer expiry names the timer of its three IA5 digits.
  const std::string cause =
      DecodeMessage({0x08, 0x01, 0x05, 0x45, 0x08, 0x05, 0x80, 0xE6, 0x33, 0x30, 0x33}, DetailLevel::Full);
  EXPECT_NE(cause.find("\t\tCause number=#102  Recovery on timer expiry\n\t\tTimer=T303\n"), std::string::npos)
      << cause;
  // Not three digits: no timer line.
  const std::string odd =
      DecodeMessage({0x08, 0x01, 0x05, 0x45, 0x08, 0x04, 0x80, 0xE6, 0x33, 0x30}, DetailLevel::Full);
  EXPECT_EQ(odd.find("Timer="), std::string::npos) << odd;
}

TEST(DetailLevel, FacilityComponents) {
  // AOC-D charging unit: invoke 5, operation 34, five recorded units, subtotal.
  const std::string invoke =
      DecodeMessage({0x08, 0x01, 0x05, 0x62, 0x1C, 0x15, 0x91, 0xA1, 0x12, 0x02, 0x01, 0x05, 0x02, 0x01,
                     0x22, 0x30, 0x0A, 0xA1, 0x05, 0x30, 0x03, 0x02, 0x01, 0x05, 0x82, 0x01, 0x00},
                    DetailLevel::Full);
  EXPECT_EQ(invoke, "Message type:FACILITY\n" + kHead +
                        "\tInformation element:Facility\n"
                        "\t\tProtocol profile=10001  Remote Operations Protocol\n"
                        "\t\tComponent=10100001  Invoke\n"
                        "\t\tComponent length=18\n"
                        "\t\tInvoke identifier=5\n"
                        "\t\tOperation value=34  AOC-D charging unit (advice of charge during the call)\n"
                        "\t\tArgument=\n"
                        "\t\tTag=0x30  SEQUENCE, length 10\n"
                        "\t\t. Tag=0xa1  [1], length 5\n"
                        "\t\t. . Tag=0x30  SEQUENCE, length 3\n"
                        "\t\t. . . Tag=0x02  INTEGER, length 1, 0x5 (5)\n"
                        "\t\t. Tag=0x82  [2], length 1, 0x0 (0)\n"
                        "\t\tRecorded units=5\n");
  // AOC-E currency: 150 hundredths of "EUR" in a RELEASE.
  const std::string currency = DecodeMessage(
      {0x08, 0x01, 0x05, 0x4D, 0x1C, 0x1A, 0x91, 0xA1, 0x17, 0x02, 0x01, 0x01, 0x02,        0x01, 0x23, 0x30,
       0x0F, 0xA1, 0x0D, 0x81, 0x03, 'E',  'U',  'R',  0xA2, 0x06, 0x81, 0x01, 0x96 & 0x7F, 0x82, 0x01, 0x01},
      DetailLevel::Full);
  EXPECT_NE(currency.find("\t\tCurrency=EUR\n\t\tAmount=22 x one hundredth\n"), std::string::npos) << currency;
  // Return error and Reject, with their names.
  const std::string error =
      DecodeMessage({0x08, 0x01, 0x05, 0x5A, 0x1C, 0x09, 0x91, 0xA3, 0x06, 0x02, 0x01, 0x07, 0x02,
                     0x01, 0x03, 0x1C, 0x09, 0x91, 0xA4, 0x06, 0x02, 0x01, 0x07, 0x81, 0x01, 0x01},
                    DetailLevel::Full);
  EXPECT_NE(error.find("\t\tComponent=10100011  Return error\n\t\tComponent length=6\n\t\tInvoke identifier=7\n"
                       "\t\tError value=3  Not available\n"),
            std::string::npos)
      << error;
  EXPECT_NE(error.find("\t\tInvoke problem=1  Unrecognized operation\n"), std::string::npos) << error;
  // A component longer than the element: shown as malformed, nothing read past the element.
  EXPECT_EQ(
      DecodeMessage({0x08, 0x01, 0x05, 0x62, 0x1C, 0x06, 0x91, 0xA1, 0x10, 0x02, 0x01, 0x05, 0xFF}, DetailLevel::Full),
      "Message type:FACILITY\n" + kHead +
          "\tInformation element:Facility\n"
          "\t\tProtocol profile=10001  Remote Operations Protocol\n"
          "\t\tMalformed encoding, octets= 0xa1 0x10 0x2 0x1 0x5\n"
          "\tInformation element:Unknown ( 0xff )\n");
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
