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

}  // namespace velmora
