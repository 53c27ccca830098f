// Calling, called and redirecting numbers and the two subaddresses.
#include <gtest/gtest.h>

#include <vector>

#include "party_numbers.h"
#include "test_support.h"

namespace velmora {

const std::string kE164 =
    "\t\tNumbering plan identification=0001  ISDN/telephony numbering plan (Recommendation E.164 [19])\n";
const std::string kUnknown = "\t\tType of number=000  Unknown\n" + kE164;
const std::string kNational = "\t\tType of number=010  National number\n" + kE164;

TEST(PartyNumbers, DecodesEachElement) {
  const testing::ElementCase cases[] = {

      // Bit 8 of octet 3 is 0, yet 0x83 is a digit octet, not octet 3a.
      {{0x70, 0x03, 0x21, 0x83, 0x35}, "Called party number\n" + kNational + "\t\tNumber digits (IA5)= 0x3 0x35\n"},
      // No digit: the label still stands.
      {{0x70, 0x01, 0xA1}, "Called party number\n" + kNational + "\t\tNumber digits (IA5)=\n"},

      // No digit octets: no digits line.
      {{0x6C, 0x02, 0x01, 0xA0},
       "Calling party number\n" + kUnknown +
           "\t\tPresentation indicator=01  Presentation restricted\n"
           "\t\tScreening indicator=00  User-provided, not screened\n"},
      // Type 101 has no row; no octet 3a is announced.
      {{0x6C, 0x01, 0xD1}, "Calling party number\n" + kE164},
      // An announced octet 3a is read behind the element, but not behind the frame.
      {{0x6C, 0x01, 0x21, 0x83},
       "Calling party number\n" + kNational +
           "\t\tPresentation indicator=00  Presentation allowed\n\t\tScreening indicator=11  Network provided\n"},
      {{0x6C, 0x01, 0x21}, "Calling party number\n" + kNational},
      // Octet 3b gives the reason; the digits label has no blank.
      // No octet 3a: the digits start at octet 4, bit 8 dropped.
      {{0x74, 0x02, 0x81, 0xB9}, "Redirecting number\n" + kUnknown + "\t\tNumber digits(IA5)= 0x39\n"},
      // Octet 3b would lie behind the frame: no reason line, the empty digits line stays.
      {{0x74, 0x02, 0x01, 0x02},
       "Redirecting number\n" + kUnknown +
           "\t\tPresentation indicator=00  Presentation allowed\n"
           "\t\tScreening indicator=10  User-provided, verified and failed\n\t\tNumber digits(IA5)=\n"},
      {{0x71, 0x03, 0xA8, 0x50, 0xF1},
       "Called party subaddress\n\t\tType of subaddress=010  User specified\n"
       "\t\tOdd/even indicator=1  Odd number of address signals\n\t\tSubaddress information= 0x50 0xf1\n"},
      // Type 100 has no row; the information label stands even when empty.
      {{0x6D, 0x01, 0xC0},
       "Calling party subaddress\n\t\tOdd/even indicator=0  Even number of address signals\n"
       "\t\tSubaddress information=\n"},
      // L = 0 leaves the heading alone (the three numbers share one decoder, the subaddresses another).
      {{0x70, 0x00, 0x21}, "Called party number\n"},
      {{0x71, 0x00, 0x21}, "Called party subaddress\n"},
  };
  testing::ExpectDecodes(cases);
}

// The digits a reading takes are those the decoder shows: behind octet 3,
// 3a and 3b as each element's layout reads them.
TEST(PartyNumbers, ReadingTakesTheDigitsTheDecoderShows) {
  const struct {
    std::vector<Octet> octets;
    std::vector<Octet> digits;
  } cases[] = {
      {{0x6C, 0x04, 0x21, 0x83, 0x35, 0x36}, {0x35, 0x36}},
      {{0x6C, 0x03, 0xA1, 0x35, 0x36}, {0x35, 0x36}},
      {{0x6C, 0x01, 0x21, 0x83}, {}},  // octet 3a behind the element
      {{0x70, 0x03, 0x21, 0x83, 0x35}, {0x83, 0x35}},
      {{0x74, 0x05, 0x01, 0x02, 0x8F, 0x37, 0x38}, {0x37, 0x38}},
      {{0x74, 0x02, 0x81, 0xB9}, {0xB9}},
      {{0x28, 0x02, 0x41, 0x42}, {}},
  };
  for (const auto& c : cases) {
    const OctetSpan digits = PartyNumberDigits(ElementOctets(c.octets));
    EXPECT_EQ(std::vector<Octet>(digits.begin(), digits.end()), c.digits);
  }
}

}  // namespace velmora
