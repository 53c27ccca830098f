// Frame-line recognition, the length field and the hexadecimal cells.
#include <gtest/gtest.h>

#include <string>

#include "line_scanner.h"
#include "test_support.h"

namespace velmora {
namespace {

using testing::CaptureOutput;

// The line's output, and in `frameFound` whether it counted as a frame line.
std::string Translate(std::string_view line, bool* frameFound = nullptr) {
  return CaptureOutput([&](OutputWriter& out) {
    DecodeContext context{out};
    TranslateTraceLine(context, line);
    if (frameFound != nullptr) *frameFound = context.frameFound;
  });
}

// The worked example: 21 characters, "****", 18 characters, "HDLC", a blank,
// N = 3, a blank and three more skipped characters, then three cells.
std::string WorkedExampleLine() {
  std::string line = std::string(21, 'x') + "****" + std::string(18, 'y') + "HDLC 3 abc" + "0x02 0x01 0x7f ";
  line += std::string(82 - line.size(), 'z');
  return line + "\n";
}

TEST(FrameLine, WorkedExampleDecodesSabme) {
  const std::string line = WorkedExampleLine();
  ASSERT_EQ(line.size(), 83U);
  bool found = false;
  EXPECT_EQ(Translate(line, &found),
            line + "ISDN Layer 2: SABME(set asynchronous balanced mode extended), Request to establish link\n");
  EXPECT_TRUE(found);
}

TEST(FrameLine, NeedsEightyCharactersCountingTheLineEnd) {
  const std::string visible = "****HDLC 3 abc0x02 0x01 0x7f " + std::string(79 - 29, ' ');
  ASSERT_EQ(visible.size(), 79U);
  EXPECT_FALSE(IsFrameLine(visible));
  EXPECT_TRUE(IsFrameLine(visible + "\n"));
  // The markers may stand in either order, anywhere.
  EXPECT_TRUE(IsFrameLine("HDLC" + std::string(80, '-') + "****"));
  std::string threeStars = "HDLC";
  for (int i = 0; i < 25; ++i) threeStars += "***-";
  EXPECT_FALSE(IsFrameLine(threeStars));
}

TEST(FrameLine, PlainLinesAreCopiedWithAPercentUnchanged) {
  bool found = true;
  EXPECT_EQ(Translate("100% load %s %d\n", &found), "100% load %s %d\n");
  EXPECT_FALSE(found);
  EXPECT_EQ(Translate(std::string(200, '*'), &found), std::string(200, '*'));
  EXPECT_FALSE(found);
}

TEST(FrameLine, NulBytesAreDataAndDoNotHideTheRestOfTheLine) {
  std::string line = "****" + std::string(1, '\0') + "HDLC 3 abc0x00 0x81 0x7f" + std::string(60, ' ') + "\n";
  const std::string out = Translate(line);
  EXPECT_EQ(out.substr(0, line.size()), line);
  EXPECT_EQ(out.substr(line.size()),
            "ISDN Layer 2: SABME(set asynchronous balanced mode extended), Request to establish link\n");
}

// Decodes the octets of a frame line made of `head` and padding.
std::vector<Octet> OctetsOf(const std::string& head) {
  std::string line = "**** " + head;
  if (line.size() < 90) line += std::string(90 - line.size(), ' ');
  Octet frame[kFrameCapacity];
  const std::size_t count = ReadFrameOctets(line, frame);
  return {frame, frame + count};
}

TEST(LengthField, ReadsDigitsBehindOneSkippedCharacter) {
  // H + 4 is skipped even when it is a digit: "HDLC12 " reads N = 2.
  EXPECT_EQ(OctetsOf("HDLC12 abc0x01 0x02 0x03 "), (std::vector<Octet>{0x01, 0x02}));
  EXPECT_EQ(OctetsOf("HDLC:012abc0x01 0x02 0x03 0x04 0x05 0x06 0x07 0x08 0x09 0x0a 0x0b 0x0c 0x0d").size(), 12U);
  // No digit at H + 5: N = 0.
  EXPECT_TRUE(OctetsOf("HDLC: x  0x01 0x02 ").empty());
  // The first "HDLC" anchors the field.
  EXPECT_EQ(OctetsOf("HDLC 1 abc0x05 HDLC 2 abc0x01 0x02 "), (std::vector<Octet>{0x05}));
}

TEST(LengthField, ZeroOctetFrameStillCountsAsFound) {
  bool found = false;
  const std::string line = "**** HDLC: none" + std::string(80, ' ') + "\n";
  EXPECT_EQ(Translate(line, &found), line + "ISDN Layer 2: Truncated frame\n");
  EXPECT_TRUE(found);
}

TEST(HexCells, UpperCaseDigitsTakeTheArithmeticRule) {
  // "7F" is 7 * 16 + ('F' - 48 = 22) = 0x86; "1A" gives 0x21.
  EXPECT_EQ(OctetsOf("HDLC 3 abc0x7F 0x1A 0xff "), (std::vector<Octet>{0x86, 0x21, 0xff}));
  // Characters not read by the rule: cell positions 0, 1 and 4 can be anything.
  EXPECT_EQ(OctetsOf("HDLC 2 abc##c3!??0a#"), (std::vector<Octet>{0xc3, 0x0a}));
}

TEST(HexCells, NeverReadsPastTheLineOrTheFrameBuffer) {
  // 40 cells announced, 2 present (the line end is not cell text).
  std::string line = std::string(70, '-') + "**** HDLC 40 abc0x01 0x02\n";
  Octet frame[kFrameCapacity];
  EXPECT_EQ(ReadFrameOctets(line, frame), 2U);
  // A cell whose low digit would be the line end is not present, the first
  // cell as any other.
  line = std::string(70, '-') + "**** HDLC 40 abc0x01 0x0\n";
  EXPECT_EQ(ReadFrameOctets(line, frame), 1U);
  EXPECT_EQ(ReadFrameOctets(std::string(70, '-') + "**** HDLC 40 abc0x01\n", frame), 1U);
  EXPECT_EQ(ReadFrameOctets(std::string(70, '-') + "**** HDLC 40 abc0x0\n", frame), 0U);

  // A length above the 300-octet buffer decodes the first 300 octets.
  std::string big = "**** HDLC 99999999999999999999 abc";
  for (int k = 0; k < 350; ++k) big += "0x7e ";
  EXPECT_EQ(ReadFrameOctets(big, frame), kFrameCapacity);
  EXPECT_EQ(frame[299], 0x7e);
}

}  // namespace
}  // namespace velmora
