// Network-specific facilities and Transit network selection: the network's
// identification type, plan and IA5 code, and the facility octet.
#include <gtest/gtest.h>

#include "elements/element_decoders.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::DecodeOctets;

constexpr const char* kNational = "\t\tType of network identification=010  National network identification\n";
constexpr const char* kCarrierCode = "\t\tNetwork identification plan=0001  Carrier Identification Code\n";

TEST(TransitNetworkSelection, CarrierCodeAsIa5Codes) {
  const auto carrier = DecodeOctets(DecodeTransitNetworkSelection, {0x78, 0x05, 0x21, 0x31, 0x32, 0x33, 0x34});
  EXPECT_EQ(carrier.text, std::string("Transit network selection\n") + kNational + kCarrierCode +
                              "\t\tNetwork identification(IA5)= 0x31 0x32 0x33 0x34\n");
  EXPECT_EQ(carrier.count, 7);

  // The data network plan carries its X.121 reference here; bit 8 of a
  // character octet is dropped.
  const auto dnic = DecodeOctets(DecodeTransitNetworkSelection, {0x78, 0x02, 0xA3, 0xB1});
  EXPECT_EQ(dnic.text, std::string("Transit network selection\n") + kNational +
                           "\t\tNetwork identification plan=0011  Data network identification code "
                           "(Recommendation X.121 [21])\n"
                           "\t\tNetwork identification(IA5)= 0x31\n");
}

TEST(TransitNetworkSelection, ShortElements) {
  // No characters: the dump line is empty. Unnamed type 001 prints no line.
  const auto noCharacters = DecodeOctets(DecodeTransitNetworkSelection, {0x78, 0x01, 0x10, 0x31});
  EXPECT_EQ(noCharacters.text,
            "Transit network selection\n"
            "\t\tNetwork identification plan=0000  Unknown\n"
            "\t\tNetwork identification(IA5)=\n");
  EXPECT_EQ(noCharacters.count, 3);

  const auto empty = DecodeOctets(DecodeTransitNetworkSelection, {0x78, 0x00, 0x21});
  EXPECT_EQ(empty.text, "Transit network selection\n");
  EXPECT_EQ(empty.count, 2);

  const auto cutByFrame = DecodeOctets(DecodeTransitNetworkSelection, {0x78, 0x05, 0x30, 0x31});
  EXPECT_EQ(cutByFrame.text,
            "Transit network selection\n"
            "\t\tType of network identification=011  International network identification\n"
            "\t\tNetwork identification plan=0000  Unknown\n"
            "\t\tNetwork identification(IA5)= 0x31\n");
  EXPECT_EQ(cutByFrame.count, 7);
}

TEST(NetworkSpecificFacilities, IdentificationThenFacilityOctet) {
  const auto withNetwork =
      DecodeOctets(DecodeNetworkSpecificFacilities, {0x20, 0x06, 0x04, 0x21, 0x31, 0x32, 0x33, 0x0B});
  EXPECT_EQ(withNetwork.text, std::string("Network-specific facilities\n") + kNational + kCarrierCode +
                                  "\t\tNetwork identification(IA5)= 0x31 0x32 0x33\n"
                                  "\t\tNetwork-specific facilities= 0xb\n");
  EXPECT_EQ(withNetwork.count, 8);

  // N = 1: octet 3.1 alone, no characters; the plan has no X.121 reference here.
  const auto planOnly = DecodeOctets(DecodeNetworkSpecificFacilities, {0x20, 0x03, 0x01, 0x23, 0x8B});
  EXPECT_EQ(planOnly.text, std::string("Network-specific facilities\n") + kNational +
                               "\t\tNetwork identification plan=0011  Data network identification code\n"
                               "\t\tNetwork identification(IA5)=\n"
                               "\t\tNetwork-specific facilities= 0x8b\n");
}

TEST(NetworkSpecificFacilities, NoIdentificationWhenOctet3IsZeroOrAbove0x7F) {
  for (const Octet octet3 : {Octet{0x00}, Octet{0x80}}) {
    const auto decoded = DecodeOctets(DecodeNetworkSpecificFacilities, {0x20, 0x02, octet3, 0x0B});
    EXPECT_EQ(decoded.text, "Network-specific facilities\n\t\tNetwork-specific facilities= 0xb\n");
    EXPECT_EQ(decoded.count, 4);
  }
}

TEST(NetworkSpecificFacilities, ElementEndingBeforeTheFacilityOctet) {
  // N announces three characters, the element holds one: the octet behind
  // the element is neither a character nor the facility.
  const auto shortIdentification =
      DecodeOctets(DecodeNetworkSpecificFacilities, {0x20, 0x03, 0x04, 0x21, 0x31, 0x0B});
  EXPECT_EQ(shortIdentification.text, std::string("Network-specific facilities\n") + kNational + kCarrierCode +
                                          "\t\tNetwork identification(IA5)= 0x31\n");
  EXPECT_EQ(shortIdentification.count, 5);

  const auto noFacility = DecodeOctets(DecodeNetworkSpecificFacilities, {0x20, 0x01, 0x00, 0x0B});
  EXPECT_EQ(noFacility.text, "Network-specific facilities\n");
  EXPECT_EQ(noFacility.count, 3);

  const auto cutByFrame = DecodeOctets(DecodeNetworkSpecificFacilities, {0x20, 0x06, 0x04, 0x21, 0x31});
  EXPECT_EQ(cutByFrame.text, std::string("Network-specific facilities\n") + kNational + kCarrierCode +
                                 "\t\tNetwork identification(IA5)= 0x31\n");
  EXPECT_EQ(cutByFrame.count, 8);
}

}  // namespace
}  // namespace velmora
