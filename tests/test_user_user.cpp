// User-user: the protocol discriminator, by value or by range, and the user
// information dumped in hexadecimal.
#include <gtest/gtest.h>

#include <vector>

#include "elements/element_decoders.h"
#include "q931/message.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;
using testing::DecodeOctets;

TEST(UserUser, Ia5TextIsStillDumpedInHexadecimal) {
  const auto ia5 = DecodeOctets(DecodeUserUser, {0x7E, 0x04, 0x04, 0x48, 0x49, 0x21});
  EXPECT_EQ(ia5.text,
            "User-user\n"
            "\t\tProtocol discriminator=00000100  IA5 characters\n"
            "\t\tUser information= 0x48 0x49 0x21\n");
  EXPECT_EQ(ia5.count, 6);
}

TEST(UserUser, DiscriminatorRangesPrintTheOctetInHexadecimal) {
  const auto national = DecodeOctets(DecodeUserUser, {0x7E, 0x02, 0x45, 0xFF});
  EXPECT_EQ(national.text,
            "User-user\n"
            "\t\tProtocol discriminator=0x45  National use\n"
            "\t\tUser information= 0xff\n");

  constexpr const char* kX25 =
      "  Reserved for other network layer or layer 3 protocols, including Recommendation X.25\n";
  EXPECT_EQ(DecodeOctets(DecodeUserUser, {0x7E, 0x01, 0x10}).text,
            std::string("User-user\n\t\tProtocol discriminator=0x10") + kX25 + "\t\tUser information=\n");
  const auto reserved = DecodeOctets(DecodeUserUser, {0x7E, 0x01, 0xA0});
  EXPECT_EQ(reserved.text,
            std::string("User-user\n\t\tProtocol discriminator=0xa0") + kX25 + "\t\tUser information=\n");
  EXPECT_EQ(reserved.count, 3);

  // Unnamed discriminators print no line; the user information still does.
  for (const Octet unnamed : {Octet{0x06}, Octet{0x0F}, Octet{0xFF}}) {
    EXPECT_EQ(DecodeOctets(DecodeUserUser, {0x7E, 0x02, unnamed, 0x41}).text,
              "User-user\n\t\tUser information= 0x41\n");
  }
}

TEST(UserUser, DumpCoversExactlyTheElement) {
  // A length of 0x81 is 129: 128 user information octets, 0x80 to 0xff.
  std::vector<Octet> octets{0x7E, 0x81, 0x00};
  for (int value = 0x80; value <= 0xFF; ++value) octets.push_back(static_cast<Octet>(value));
  octets.push_back(0x55);  // behind the element
  const auto long_ = DecodeOctets(DecodeUserUser, octets);
  EXPECT_EQ(long_.text.rfind("User-user\n"
                             "\t\tProtocol discriminator=00000000  User-specific protocol\n"
                             "\t\tUser information= 0x80 0x81 0x82 ",
                             0),
            0U);
  EXPECT_TRUE(long_.text.ends_with(" 0xfd 0xfe 0xff\n"));
  EXPECT_EQ(long_.text.size(), 87U + 128U * 5U + 1U);
  EXPECT_EQ(long_.count, 131);

  const auto cutByFrame = DecodeOctets(DecodeUserUser, {0x7E, 0x05, 0x04, 0x41});
  EXPECT_EQ(cutByFrame.text,
            "User-user\n"
            "\t\tProtocol discriminator=00000100  IA5 characters\n"
            "\t\tUser information= 0x41\n");
  EXPECT_EQ(cutByFrame.count, 7);

  const auto empty = DecodeOctets(DecodeUserUser, {0x7E, 0x00, 0x04});
  EXPECT_EQ(empty.text, "User-user\n");
  EXPECT_EQ(empty.count, 2);
}

TEST(UserUser, UserInformationMessageTakesTheIdentifierWithBit8Set) {
  // USER INFORMATION matches on bits 7 to 1, so 0xFE is a User-user element too.
  const std::vector<Octet> message{0x08, 0x01, 0x01, 0x20, 0xFE, 0x03, 0x04, 0x4F, 0x4B};
  EXPECT_EQ(CaptureOutput([&] { DecodeQ931Message(message); }),
            "Message type:USER INFORMATION\n"
            "\tInformation element:User-user\n"
            "\t\tProtocol discriminator=00000100  IA5 characters\n"
            "\t\tUser information= 0x4f 0x4b\n");
}

}  // namespace
}  // namespace velmora
