// The shared line forms and octet-field helpers every decoder prints with.
#include <gtest/gtest.h>

#include "common_tables.h"
#include "field_text.h"
#include "test_support.h"

namespace velmora {

using testing::CaptureOutput;

TEST(OctetHelpers, BitsCountFromEightDownAndRangesIncludeBothEnds) {
  EXPECT_EQ(FieldBits(0xE8, 7, 6), 0b11U);
  EXPECT_EQ(FieldBits(0xE8, 5, 1), 0b01000U);
  EXPECT_EQ(FieldBits(0x80, 8, 8), 1U);
  EXPECT_EQ(FieldBits(0xFF, 7, 1), 0x7FU);
  EXPECT_TRUE(AnnouncesMore(0x7F));
  EXPECT_FALSE(AnnouncesMore(0x80));
  // Both ends belong to a range.
  constexpr RangeText kRanges[] = {{0x10, 0x3F, "low"}, {0x50, 0xFE, "high"}};
  EXPECT_EQ(FindRange(kRanges, 0x0F), nullptr);
  EXPECT_EQ(FindRange(kRanges, 0x10)->text, "low");
  EXPECT_EQ(FindRange(kRanges, 0x3F)->text, "low");
  EXPECT_EQ(FindRange(kRanges, 0x40), nullptr);
  EXPECT_EQ(FindRange(kRanges, 0xFE)->text, "high");
  EXPECT_EQ(FindRange(kRanges, 0xFF), nullptr);
}

TEST(LineForms, EachFormAtBothIndents) {
  EXPECT_EQ(CaptureOutput(
                [](OutputWriter& out) { PrintCodedValue(out, "Message type", 0x05, 8, "SETUP", Indent::SubField); }),
            "\t\t\tMessage type=00000101  SETUP\n");
  EXPECT_EQ(CaptureOutput([](OutputWriter& out) { PrintHexMeaning(out, "Protocol discriminator", 0xA0, "Reserved"); }),
            "\t\tProtocol discriminator=0xa0  Reserved\n");
  EXPECT_EQ(CaptureOutput([](OutputWriter& out) { PrintHexField(out, "Rate multiplier", 0x1A); }),
            "\t\tRate multiplier=0x1a\n");
  EXPECT_EQ(
      CaptureOutput([](OutputWriter& out) { PrintSpacedHexField(out, "Window size (k)", 0x7, Indent::SubField); }),
      "\t\t\tWindow size (k)= 0x7\n");
  EXPECT_EQ(CaptureOutput([](OutputWriter& out) { PrintDecimalField(out, "Year", 200); }), "\t\tYear=200\n");
  // An IA5 string drops bit 8 where an octet string keeps it.
  const Octet octets[] = {0x31, 0xB2, 0x0D};
  EXPECT_EQ(CaptureOutput([&](OutputWriter& out) { PrintIa5String(out, "Digits", octets); }),
            "\t\tDigits= 0x31 0x32 0xd\n");
  EXPECT_EQ(CaptureOutput([&](OutputWriter& out) { PrintOctetString(out, "Dump", octets); }),
            "\t\tDump= 0x31 0xb2 0xd\n");
  EXPECT_EQ(CaptureOutput([](OutputWriter& out) { PrintIa5String(out, "Digits", {}); }), "\t\tDigits=\n");
  // Octet fields print in order and skip values without a row.
  static constexpr ValueText kOnlyOne[] = {{1, "one"}};
  static constexpr CodedField kFields[] = {
      {"Coding standard", 7, 6, kCodingStandard}, {"Bit 5", 5, 5, kOnlyOne}, {"Bit 4", 4, 4, kOnlyOne}};
  EXPECT_EQ(CaptureOutput([&](OutputWriter& out) { PrintFields(out, 0xC8, kFields); }),
            "\t\tCoding standard=10  National standard\n\t\tBit 4=1  one\n");
}

}  // namespace velmora
