// Captures in and out through the velmora command: pcap and pcapng files of
// LAPD frames translated as trace logs, damaged captures, trace logs
// exported as pcap files and read back with libpcap itself, and the round
// trip over the golden traces.
#include <gtest/gtest.h>
#include <pcap/pcap.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "capture_bytes.h"
#include "capture_input.h"
#include "decode_context.h"
#include "line_scanner.h"
#include "pieces.h"
#include "test_support.h"
#include "trace_files.h"

namespace velmora::testing {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

const std::string kSabme("\x00\x81\x7f", 3);
const std::string kUa("\x00\x81\x73", 3);
constexpr std::uint32_t kSeconds = 1773479702;  // 2026-03-14 09:15:02 UTC

// The frame lines of the two packets below, as a trace log of the card.
const std::string kSabmeLine = "00001 2026-03-14 09:15:02.000005 **** D-CH -- HDLC:3  | 0x00 0x81 0x7f          \n";
const std::string kUaLine = "00002 2026-03-14 09:15:03.999999 **** D-CH -- HDLC:3  | 0x00 0x81 0x73          \n";

using Captures = ScratchDirectoryTest;

TEST_F(Captures, EachPacketIsAFrameLineTranslatedAsInATraceLog) {
  const PcapLayout lapd;
  Write("lapd.pcap",
        PcapHeader(lapd) + PcapRecord(lapd, kSeconds, 5, kSabme) + PcapRecord(lapd, kSeconds + 1, 999999, kUa));
  Write("lapd.pcapng", PcapngSection() + PcapngInterface(203) + PcapngPacket(0, kSeconds * 1000000ULL + 5, kSabme) +
                           PcapngPacket(0, (kSeconds + 1) * 1000000ULL + 999999, kUa));
  // Recognised by content, never by name; from a file, a redirection or a pipe.
  const std::string expected = kSabmeLine + kSabmeText + kUaLine + kUaAfterSabmeText;
  for (const std::string args : {"lapd.pcapng out.txt", "- out.txt <lapd.pcap"}) {
    EXPECT_EQ(Velmora(args).status, 0) << args;
    EXPECT_EQ(Read("out.txt"), expected) << args;
  }
  ASSERT_EQ(std::system(("cd " + dir_.string() + " && cat lapd.pcap | " VELMORA_CLI_PATH " -q - piped.txt").c_str()),
            0);
  EXPECT_EQ(Read("piped.txt"), expected);

  // Big-endian, nanoseconds, LINKTYPE_LINUX_LAPD: sent, received, between
  // other hosts, and too short for its pseudo-header.
  const PcapLayout cooked{177, true, true};
  Write("linux.pcap", PcapHeader(cooked) + PcapRecord(cooked, kSeconds, 123456789, LinuxLapd(4, kSabme)) +
                          PcapRecord(cooked, kSeconds, 123457999, LinuxLapd(0, kUa)) +
                          PcapRecord(cooked, 0, 0, LinuxLapd(3, "\x02\x81\x01\x02"s)) +
                          PcapRecord(cooked, 0, 0, std::string(15, '\x04')));
  EXPECT_EQ(Velmora("linux.pcap out.txt").status, 0);
  EXPECT_EQ(Read("out.txt"), "00001 2026-03-14 09:15:02.123456 **** D-CH TX HDLC:3  | 0x00 0x81 0x7f          \n" +
                                 kSabmeText +
                                 "00002 2026-03-14 09:15:02.123457 **** D-CH RX HDLC:3  | 0x00 0x81 0x73          \n" +
                                 kUaAfterSabmeText +
                                 "00003 1970-01-01 00:00:00.000000 **** D-CH -- HDLC:4  | 0x02 0x81 0x01 0x02     \n"
                                 "ISDN Layer 2: Supervisory  RR(receive ready)\n"
                                 "00004 1970-01-01 00:00:00.000000 **** D-CH -- HDLC:0  |                         \n"
                                 "ISDN Layer 2: Truncated frame\n");

  // A frame longer than 300 octets: all its cells on the line, which comes
  // in pieces of 2047 characters; the first 300 octets are decoded.
  std::string big = kSabme;
  big.resize(400, '\x55');
  Write("big.pcap", PcapHeader(lapd) + PcapRecord(lapd, kSeconds, 0, big));
  EXPECT_EQ(Velmora("big.pcap out.txt").status, 0);
  const std::string out = Read("out.txt");
  EXPECT_EQ(out.substr(0, 62), "00001 2026-03-14 09:15:02.000000 **** D-CH -- HDLC:400  | 0x00");
  EXPECT_EQ(out.substr(2047, kSabmeText.size()), kSabmeText);
  EXPECT_EQ(out.size(), 58 + 400 * 5 + 1 + kSabmeText.size());
}

TEST_F(Captures, BadCapturesSayWhatIsWrongAndWhere) {
  const PcapLayout lapd;
  const std::string header = PcapHeader(lapd);
  const std::string first = PcapRecord(lapd, kSeconds, 5, kSabme);
  const std::string section =
      PcapngSection() + PcapngInterface(203) + PcapngPacket(0, kSeconds * 1000000ULL + 5, kSabme);
  const struct {
    std::string name, bytes;
    int status;
    std::string err;  // standard error holds it
  } cases[] = {
      // Refused before the output is opened.
      {"header.pcap", header.substr(0, 10), 65,
       "Cannot open Input log file!\nvelmora: header.pcap: the capture's header cannot be read: truncated dump file"},
      {"ethernet.pcap", PcapHeader({1}) + first, 65,
       "velmora: ethernet.pcap: link type 1 (EN10MB, Ethernet) is not LAPD: captures of LINKTYPE_LAPD (203) or "
       "LINKTYPE_LINUX_LAPD (177) are translated\n"},
      // Cut off: what came before is translated.
      {"long.pcap", header + first + PcapRecord(lapd, kSeconds, 0, kUa, 1000), 74,
       "velmora: long.pcap: the capture ends at byte 62 in the middle of a record, after packet 1 (truncated dump "
       "file; tried to read 1000 captured bytes, only got 3); the output is incomplete\n"},
      // Damaged in the middle.
      {"interface.pcapng", section + PcapngInterface(1) + PcapngPacket(1, 0, kUa), 65,
       "velmora: interface.pcapng: the capture cannot be read after packet 1: an interface has a type 1 different "
       "from the type of the first interface; the output is incomplete\n"},
      // Odd but readable.
      {"snap.pcap", PcapHeader({203, false, false, 0xFFFFFFFF}) + first, 0, "Translation is done!\n"},
      {"zero.pcap", header + first + PcapRecord(lapd, kSeconds, 0, ""), 0, "Translation is done!\n"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Write(c.name, c.bytes);
    fs::remove(Path("out.txt"));
    const Finished run = Velmora(c.name + " out.txt");
    EXPECT_EQ(run.status, c.status);
    EXPECT_NE(run.err.find(c.err), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find("Translation is done!"), c.status == 0 ? 0 : std::string::npos) << run.err;
    if (run.err.starts_with("Cannot open")) {
      EXPECT_FALSE(fs::exists(Path("out.txt")));
    } else {
      EXPECT_TRUE(Read("out.txt").starts_with(kSabmeLine + kSabmeText));
    }
  }
}

// Text that only begins like a capture is a trace log, its first bytes kept.
TEST_F(Captures, InputsThatOnlyBeginLikeACaptureAreTraceLogs) {
  for (const std::string text : {"\n\r\r", "\xa1\xb2\xc3", "M<\n"}) {
    const std::string command = "printf '%s' '" + text + "' | " VELMORA_CLI_PATH " -q - - 2>/dev/null >" + Path("out");
    EXPECT_EQ(std::system(command.c_str()) >> 8, 1);
    EXPECT_EQ(Read("out"), text);
  }
}

// A format may be shown more of the input's start than its signature, the
// first lines of a text: a capture still tells itself by its first bytes.
TEST(CaptureRecognition, LooksAtTheFirstBytesOfALongerHead) {
  const InputFormat& capture = CaptureFormat();
  const std::string pcapStart = std::string("\xd4\xc3\xb2\xa1", 4) + std::string(kRecognitionBytes - 4, '\0');
  EXPECT_EQ(capture.Recognise(pcapStart), Recognition::Yes);
  EXPECT_EQ(capture.Recognise(std::string_view(pcapStart).substr(0, 2)), Recognition::NeedMore);
  EXPECT_EQ(capture.Recognise(std::string(kRecognitionBytes, 'x')), Recognition::No);
  EXPECT_EQ(capture.Recognise("\n\r\r# three of pcapng's four signature bytes, then a text"), Recognition::No);
}

// A pcap file read with libpcap: its link type and each packet's moment in
// microseconds and octets.
struct ReadBack {
  int linkType = -1;
  std::vector<std::pair<std::int64_t, std::string>> packets;
};

ReadBack ReadWithLibpcap(const std::string& path) {
  char error[PCAP_ERRBUF_SIZE] = "";
  pcap_t* pcap = pcap_open_offline(path.c_str(), error);
  if (pcap == nullptr) {
    ADD_FAILURE() << path << ": " << error;
    return {};
  }
  ReadBack back{pcap_datalink(pcap), {}};
  pcap_pkthdr* header = nullptr;
  const u_char* data = nullptr;
  int status = 0;
  while ((status = pcap_next_ex(pcap, &header, &data)) == 1) {
    back.packets.emplace_back(header->ts.tv_sec * 1000000LL + header->ts.tv_usec,
                              std::string(reinterpret_cast<const char*>(data), header->caplen));
  }
  EXPECT_EQ(status, PCAP_ERROR_BREAK) << pcap_geterr(pcap);
  pcap_close(pcap);
  return back;
}

// A line padded to a frame line's 80 characters.
std::string Padded(std::string line) { return line + std::string(line.size() < 85 ? 85 - line.size() : 0, ' ') + "\n"; }

TEST_F(Captures, ExportKeepsDirectionsAndMomentsOfTheFrameLines) {
  Write("directed.txt", "# a trace with directions\n" +
                            Padded("00001 2026-03-14 09:15:02.306 **** D-CH TX HDLC:3  | 0x00 0x81 0x7f") +
                            // A time alone is on the date of the line before; no time is a microsecond later.
                            Padded("00002 09:15:03.5 **** D-CH rx HDLC:4  | 0x00 0x81 0x01 0x02") +
                            Padded("00003 **** D-CH HDLC:5  | 0x00 0x81 0x73 0xAB 0xcd") +
                            // Outside what a pcap file holds: the nearest moment it does.
                            Padded("1969-12-31 23:59:59 TX **** HDLC:1  | 0xff") +
                            Padded("2040-01-01 00:00:00 RX **** HDLC:0  |") + "not a frame line\n");
  EXPECT_EQ(Velmora("--to pcap directed.txt directed.pcap").status, 0);
  const ReadBack directed = ReadWithLibpcap(Path("directed.pcap"));
  EXPECT_EQ(directed.linkType, 177);
  const auto behind = [](std::uint8_t packetType, std::string frame) {
    return std::string{'\0', char(packetType), '\x20', '\xfd'} + std::string(10, '\0') + "\x00\x30"s + frame;
  };
  const std::int64_t day = 1773446400LL * 1000000;  // 2026-03-14
  const std::vector<std::pair<std::int64_t, std::string>> wanted = {
      {day + 33302306000, behind(4, kSabme)},
      {day + 33303500000, behind(0, "\x00\x81\x01\x02"s)},
      {day + 33303500001, behind(3, "\x00\x81\x73\x22\xcd"s)},  // "AB" reads as 0x22
      {0, behind(4, "\xff")},
      {0x7FFFFFFFLL * 1000000 + 999999, behind(0, "")},
  };
  EXPECT_EQ(directed.packets, wanted);

  // Without directions: LINKTYPE_LAPD, the frames alone.
  Write("plain.txt", Padded("**** D-CH HDLC:3  | 0x00 0x81 0x7f") + Padded("**** D-CH HDLC:3  | 0x00 0x81 0x73"));
  EXPECT_EQ(Velmora("--to pcap plain.txt plain.pcap").status, 0);
  const ReadBack plain = ReadWithLibpcap(Path("plain.pcap"));
  EXPECT_EQ(plain.linkType, 203);
  EXPECT_EQ(plain.packets, (std::vector<std::pair<std::int64_t, std::string>>{{0, kSabme}, {1, kUa}}));

  // No frame line: a pcap file of no packets, and no useful information.
  Write("none.txt", "# nothing here\n");
  EXPECT_EQ(Velmora("--to pcap none.txt - >none.pcap").status, 1);
  EXPECT_TRUE(ReadWithLibpcap(Path("none.pcap")).packets.empty());
}

// What the decoders print behind each frame line of a trace, in order, the
// link memory carried from frame to frame as in one run.
std::vector<std::string> FrameDecodings(std::string_view trace) {
  std::vector<std::string> decodings;
  LinkSetup link = LinkSetup::NotPending;
  ForEachPiece(trace, [&](std::string_view piece) {
    if (!IsFrameLine(piece)) return;
    const std::string text = CaptureOutput([&](OutputWriter& out) {
      DecodeContext context{out, link};
      TranslateTraceLine(context, piece);
      link = context.linkSetup;
    });
    decodings.push_back(text.substr(piece.size()));
  });
  return decodings;
}

class RoundTrip : public ScratchDirectoryTest, public ::testing::WithParamInterface<std::string> {};

// velmora --to pcap t.log t.pcap, then velmora t.pcap m.txt: each frame
// decodes to the text velmora t.log m2.txt gives it; only the frame lines
// differ, and the lines that carry no frame are gone.
TEST_P(RoundTrip, ACaptureOfATraceDecodesEveryFrameAsTheTraceDoes) {
  const std::string trace = ReadAll(fs::path(VELMORA_TEST_DATA) / (GetParam() + ".in.txt"));
  Write("t.log", trace);
  ASSERT_EQ(Velmora("-q --to pcap t.log t.pcap").status, 0);
  ASSERT_EQ(Velmora("-q t.pcap m.txt").status, 0);
  ASSERT_EQ(Velmora("-q t.log m2.txt").status, 0);
  const std::vector<std::string> decodings = FrameDecodings(trace);
  ASSERT_FALSE(decodings.empty());

  std::string fromTrace;
  std::size_t frame = 0;
  ForEachPiece(trace, [&](std::string_view piece) {
    fromTrace += piece;
    if (IsFrameLine(piece)) fromTrace += decodings[frame++];
  });
  EXPECT_TRUE(Read("m2.txt") == fromTrace);

  const std::string fromCapture = Read("m.txt");
  std::size_t at = 0;
  for (std::size_t k = 0; k < decodings.size(); ++k) {
    const std::size_t lineEnd = fromCapture.find('\n', at);
    ASSERT_NE(lineEnd, std::string::npos) << "frame " << k + 1 << " is missing";
    const std::string_view line = std::string_view(fromCapture).substr(at, lineEnd + 1 - at);
    EXPECT_TRUE(IsFrameLine(line)) << line;
    at = lineEnd + 1;
    ASSERT_EQ(fromCapture.substr(at, decodings[k].size()), decodings[k]) << "frame " << k + 1 << ": " << line;
    at += decodings[k].size();
  }
  EXPECT_EQ(at, fromCapture.size());
}

INSTANTIATE_TEST_SUITE_P(GoldenTraces, RoundTrip, ::testing::ValuesIn(NamesEndingIn(VELMORA_TEST_DATA, ".in.txt")),
                         [](const auto& info) { return info.param; });

}  // namespace
}  // namespace velmora::testing
