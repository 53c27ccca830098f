// Network-specific facilities and Transit network selection.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {

const std::string kTransit = "Transit network selection\n";
const std::string kFacilities = "Network-specific facilities\n";
const std::string kNational = "\t\tType of network identification=010  National network identification\n";
const std::string kCarrierCode = "\t\tNetwork identification plan=0001  Carrier Identification Code\n";
const std::string kFacility0B = "\t\tNetwork-specific facilities= 0xb\n";
const std::string kUnknownPlan = "\t\tNetwork identification plan=0000  Unknown\n";

TEST(NetworkFacilitiesTransitNetwork, DecodesEachElement) {
  const testing::ElementCase cases[] = {

      // The data network plan carries its X.121 reference here; bit 8 of a character is dropped.
      {{0x78, 0x02, 0xA3, 0xB1},
       kTransit + kNational +
           "\t\tNetwork identification plan=0011  Data network identification code (Recommendation X.121 [21])\n"
           "\t\tNetwork identification(IA5)= 0x31\n"},
      // No characters: the dump line is empty. Unnamed type 001 prints no line.
      {{0x78, 0x01, 0x10, 0x31}, kTransit + kUnknownPlan + "\t\tNetwork identification(IA5)=\n"},
      {{0x78, 0x00, 0x21}, kTransit},
      {{0x78, 0x05, 0x30, 0x31},
       kTransit + "\t\tType of network identification=011  International network identification\n" + kUnknownPlan +
           "\t\tNetwork identification(IA5)= 0x31\n"},
      {{0x20, 0x06, 0x04, 0x21, 0x31, 0x32, 0x33, 0x0B},
       kFacilities + kNational + kCarrierCode + "\t\tNetwork identification(IA5)= 0x31 0x32 0x33\n" + kFacility0B},
      // N = 1: octet 3.1 alone, no characters; the plan has no X.121 reference here.
      {{0x20, 0x03, 0x01, 0x23, 0x8B},
       kFacilities + kNational +
           "\t\tNetwork identification plan=0011  Data network identification code\n"
           "\t\tNetwork identification(IA5)=\n\t\tNetwork-specific facilities= 0x8b\n"},
      // No identification when octet 3 is zero or above 0x7F.
      {{0x20, 0x02, 0x00, 0x0B}, kFacilities + kFacility0B},
      {{0x20, 0x02, 0x80, 0x0B}, kFacilities + kFacility0B},
      // N announces three characters, the element holds one: the octet behind it is neither.
      {{0x20, 0x03, 0x04, 0x21, 0x31, 0x0B},
       kFacilities + kNational + kCarrierCode + "\t\tNetwork identification(IA5)= 0x31\n"},
      {{0x20, 0x01, 0x00, 0x0B}, kFacilities},
      {{0x20, 0x06, 0x04, 0x21, 0x31},
       kFacilities + kNational + kCarrierCode + "\t\tNetwork identification(IA5)= 0x31\n"},
  };
  testing::ExpectDecodes(cases);
}

}  // namespace velmora
