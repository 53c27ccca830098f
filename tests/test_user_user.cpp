// User-user: the protocol discriminator by value or range, the information in hexadecimal.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {

const std::string kX25 = "  Reserved for other network layer or layer 3 protocols, including Recommendation X.25\n";
const std::string kIa5 = "User-user\n\t\tProtocol discriminator=00000100  IA5 characters\n";

TEST(UserUser, DiscriminatorThenTheUserInformationInHexadecimal) {
  const testing::ElementCase cases[] = {
      // Discriminator ranges print the octet in hexadecimal.
      {{0x7E, 0x02, 0x45, 0xFF},
       "User-user\n\t\tProtocol discriminator=0x45  National use\n\t\tUser information= 0xff\n"},
      {{0x7E, 0x01, 0x10}, "User-user\n\t\tProtocol discriminator=0x10" + kX25 + "\t\tUser information=\n"},
      {{0x7E, 0x01, 0xA0}, "User-user\n\t\tProtocol discriminator=0xa0" + kX25 + "\t\tUser information=\n"},
      // Unnamed discriminators print no line; the user information still does.
      {{0x7E, 0x02, 0x06, 0x41}, "User-user\n\t\tUser information= 0x41\n"},
      {{0x7E, 0x02, 0x0F, 0x41}, "User-user\n\t\tUser information= 0x41\n"},
      {{0x7E, 0x02, 0xFF, 0x41}, "User-user\n\t\tUser information= 0x41\n"},
      {{0x7E, 0x05, 0x04, 0x41}, kIa5 + "\t\tUser information= 0x41\n"},
      {{0x7E, 0x00, 0x04}, "User-user\n"},
  };
  testing::ExpectDecodes(cases);
}

TEST(UserUser, DumpCoversExactlyTheElement) {
  // A length of 0x81 is 129: 128 user information octets, 0x80 to 0xff.
  std::vector<Octet> octets{0x7E, 0x81, 0x00};
  for (int value = 0x80; value <= 0xFF; ++value) octets.push_back(static_cast<Octet>(value));
  octets.push_back(0x55);  // behind the element
  const std::string decoded = testing::DecodeOctets(octets);
  EXPECT_TRUE(
      decoded.starts_with("User-user\n\t\tProtocol discriminator=00000000  User-specific protocol\n"
                          "\t\tUser information= 0x80 0x81 0x82 "));
  EXPECT_TRUE(decoded.ends_with(" 0xfd 0xfe 0xff\n"));
  EXPECT_EQ(decoded.size(), 87U + 128U * 5U + 1U);
}

}  // namespace velmora
