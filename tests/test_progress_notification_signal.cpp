// Progress indicator, Notification indicator and Signal, alone and as a
// switch sends them in an ALERTING message.
#include <gtest/gtest.h>

#include <vector>

#include "elements/element_decoders.h"
#include "q931/message.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;
using testing::DecodeOctets;

TEST(ProgressIndicator, InBandInformationFromThePrivateNetwork) {
  const auto inBand = DecodeOctets(DecodeProgressIndicator, {0x1E, 0x02, 0x81, 0x88});
  EXPECT_EQ(inBand.text,
            "Progress indicator\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=0001  Private network serving the local user\n"
            "\t\tProgress description=0001000  In-band information or an appropriate pattern is now available\n");
  EXPECT_EQ(inBand.count, 4);
}

TEST(ProgressIndicator, UnnamedLocationAndShortElements) {
  const auto location7 = DecodeOctets(DecodeProgressIndicator, {0x1E, 0x02, 0x87, 0x82});
  EXPECT_EQ(location7.text,
            "Progress indicator\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tProgress description=0000010  Destination address is non-ISDN\n");

  // L = 1: the octet behind the element is not its progress description.
  const auto octet3Only = DecodeOctets(DecodeProgressIndicator, {0x1E, 0x01, 0x8A, 0x88});
  EXPECT_EQ(octet3Only.text,
            "Progress indicator\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=1010  Network beyond the interworking point\n");
  EXPECT_EQ(octet3Only.count, 3);

  const auto cutByFrame = DecodeOctets(DecodeProgressIndicator, {0x1E, 0x02, 0x80});
  EXPECT_EQ(cutByFrame.text,
            "Progress indicator\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=0000  User\n");
  EXPECT_EQ(cutByFrame.count, 4);
}

TEST(NotificationIndicator, SevenBitDescription) {
  EXPECT_EQ(DecodeOctets(DecodeNotificationIndicator, {0x27, 0x01, 0x80}).text,
            "Notification indicator\n\t\tNotification description=0000000  User suspended\n");
  const auto unnamed = DecodeOctets(DecodeNotificationIndicator, {0x27, 0x01, 0x83});
  EXPECT_EQ(unnamed.text, "Notification indicator\n");
  EXPECT_EQ(unnamed.count, 3);
}

TEST(Signal, WholeOctetSignalValue) {
  EXPECT_EQ(DecodeOctets(DecodeSignal, {0x34, 0x01, 0x00}).text, "Signal\n\t\tSignal value=00000000  Dial tone on\n");
  EXPECT_EQ(DecodeOctets(DecodeSignal, {0x34, 0x01, 0x01}).text,
            "Signal\n\t\tSignal value=00000001  Ring back tone on\n");
  EXPECT_EQ(DecodeOctets(DecodeSignal, {0x34, 0x01, 0x3F}).text, "Signal\n\t\tSignal value=00111111  Tones off\n");
  // Bit 8 is part of the value: 0xBF is not Tones off.
  EXPECT_EQ(DecodeOctets(DecodeSignal, {0x34, 0x01, 0xBF}).text, "Signal\n");
}

TEST(ProgressNotificationSignal, EmptyElementsShowOnlyTheirHeading) {
  struct Case {
    ElementDecoder decoder;
    Octet identifier;
    const char* heading;
  };
  for (const Case& element : {Case{DecodeProgressIndicator, 0x1E, "Progress indicator\n"},
                              Case{DecodeNotificationIndicator, 0x27, "Notification indicator\n"},
                              Case{DecodeSignal, 0x34, "Signal\n"}}) {
    const auto empty = DecodeOctets(element.decoder, {element.identifier, 0x00, 0x01});
    EXPECT_EQ(empty.text, element.heading);
    EXPECT_EQ(empty.count, 2);
  }
}

TEST(ProgressNotificationSignal, AlertingWithRingbackFromTheNetwork) {
  // ALERTING: channel B1, in-band information, ring back tone.
  const std::vector<Octet> message{0x08, 0x01, 0x81, 0x01, 0x18, 0x01, 0x89, 0x1E, 0x02, 0x82,
                                   0x88, 0x34, 0x01, 0x01};
  EXPECT_EQ(CaptureOutput([&] { DecodeQ931Message(message); }),
            "Message type:ALERTING\n"
            "\tInformation element:Channel identification\n"
            "\t\tInterface identifier present=0  Interface implicitly identified\n"
            "\t\tInterface type=0  Basic interface\n"
            "\t\tPreferred/Exclusive=1  Exclusive; only the indicated channel is acceptable\n"
            "\t\tD-channel indicator=0  The channel identified is not the D-channel\n"
            "\t\tInformation channel selection=01  B1 channel\n"
            "\tInformation element:Progress indicator\n"
            "\t\tCoding standard=00  ITU-T standardized coding\n"
            "\t\tLocation=0010  Public network serving the local user\n"
            "\t\tProgress description=0001000  In-band information or an appropriate pattern is now available\n"
            "\tInformation element:Signal\n"
            "\t\tSignal value=00000001  Ring back tone on\n");
}

}  // namespace
}  // namespace velmora
