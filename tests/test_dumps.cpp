// Debug dumps as input, on dumps written here by hand in the layouts of a
// PBX's PRI stack (tests/data/dumps/pbx.txt) and of a router's ISDN debug
// (router.txt): the messages their lines carry, where their decode stands,
// and every output kind on them. The expected octets are worked out by hand
// from the dumps' lines.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "hex_dump.h"
#include "input_formats.h"
#include "pbx_dump.h"
#include "router_dump.h"
#include "trace_files.h"

namespace velmora::testing {
namespace {

const std::string kDump = std::string(VELMORA_TEST_DATA) + "/dumps/pbx.txt";
const std::string kRouterDump = std::string(VELMORA_TEST_DATA) + "/dumps/router.txt";
const std::string kHexDump = std::string(VELMORA_TEST_DATA) + "/dumps/hex.txt";

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t end = text.find('\n', at);
    lines.push_back(text.substr(at, end == std::string::npos ? std::string::npos : end - at));
    at = end == std::string::npos ? text.size() : end + 1;
  }
  return lines;
}

std::string Hex(OctetSpan octets) {
  std::string hex;
  for (const Octet octet : octets) {
    hex += "0123456789abcdef"[octet >> 4];
    hex += "0123456789abcdef"[octet & 0xF];
  }
  return hex;
}

struct Expected {
  std::uint64_t firstLine;
  std::uint64_t endsBefore;  // the line in front of which it is handed on; 0: at the end
  std::string octets;
  bool wholeFrame;
  FrameDirection direction;
  std::string moment;
  bool cutOff;
};

TEST(PbxDump, MessagesFromHeaderAndElementLinesOrFromTheRawFrame) {
  const Expected expected[] = {
      // SETUP: 08, call reference 2 octets 00 05 (from the originator), type 5, three elements.
      {2, 13, "0802000505040380 90a31803a983817003813132", false, FrameDirection::Sent, "09:15:02", false},
      // CALL PROCEEDING behind "PRI Span: 1 < TEI=0": to the originator (flag set), "Message Type:".
      {14, 19, "0802800502 1803a98381", false, FrameDirection::Received, "", false},
      // A raw I frame: its octets, whatever the decode lines behind it say.
      {19, 31, "0201020408028005450802 8090", true, FrameDirection::Received, "", false},
      // An RR frame alone; the unmarked line behind ends it.
      {31, 34, "00010105", true, FrameDirection::Sent, "", false},
      // RELEASE whose Cause line is cut: its header's octets, shorter than len=9.
      {35, 0, "080200054d", false, FrameDirection::Sent, "", true},
  };
  PbxDumpReader reader;
  std::size_t next = 0;
  const auto check = [&](const DumpMessage* message, std::uint64_t before) {
    if (message == nullptr) return;
    ASSERT_LT(next, std::size(expected)) << "a message more than expected, before line " << before;
    const Expected& want = expected[next++];
    std::string octets = want.octets;
    std::erase(octets, ' ');
    EXPECT_EQ(message->firstLine, want.firstLine);
    EXPECT_EQ(before, want.endsBefore) << "message of line " << want.firstLine;
    EXPECT_EQ(Hex(message->octets), octets) << "message of line " << want.firstLine;
    EXPECT_EQ(message->wholeFrame, want.wholeFrame);
    EXPECT_EQ(message->direction, want.direction);
    EXPECT_EQ(message->moment, want.moment);
    EXPECT_EQ(message->cutOff, want.cutOff);
  };
  std::uint64_t number = 0;
  for (const std::string& line : Lines(ReadAll(kDump))) {
    ++number;
    check(reader.Before(line, number), number);
  }
  check(reader.Finish(), 0);
  EXPECT_EQ(next, std::size(expected));
}

TEST(PbxDump, NewerStacksWordingAndOtherPrefixes) {
  PbxDumpReader reader;
  // "Sent from originator", a span prefix, a one-octet call reference.
  const std::vector<std::string> lines = {
      "PRI Span: 2 > Protocol Discriminator: Q.931 (8)  len=4",
      "PRI Span: 2 > Call Ref: len= 1 (reference 65/0x41) (Sent from originator)",
      "PRI Span: 2 > Message Type: CONNECT ACKNOWLEDGE (15)",
      "PRI Span: 2 < Protocol Discriminator: Q.931 (8)  len=3",
      "PRI Span: 2 < Call Ref: len= 0 (reference 0/0x0) (Sent to originator)",
      "PRI Span: 2 < Message Type: STATUS ENQUIRY (117)",
      "a line after them",
  };
  std::vector<std::string> found;
  std::uint64_t number = 0;
  for (const std::string& line : lines)
    if (const DumpMessage* message = reader.Before(line, ++number)) found.push_back(Hex(message->octets));
  EXPECT_EQ(found, (std::vector<std::string>{"0801410f", "080075"}));
  EXPECT_EQ(reader.Finish(), nullptr);
}

TEST(PbxDump, TheInputsStartTellsTheFormat) {
  const InputFormat& format = PbxDumpFormat();
  EXPECT_EQ(format.Recognise("-- noise\n[Mar 14] VERBOSE[1] x.c: > Protocol Discriminator: Q.931 (8)  len=3\n"),
            Recognition::Yes);
  EXPECT_EQ(format.Recognise("< [ 00 01 01 05 ]\n"), Recognition::Yes);
  EXPECT_EQ(format.Recognise("00001 2026-03-14 09:15:02.306 **** D-CH TX HDLC:3  | 0x00 0x01 0x01\n"), Recognition::No);
  EXPECT_EQ(format.Recognise("> Protocol Discrim"), Recognition::NeedMore);
}

// The messages a reader hands on for `lines`, as hex, with the line in
// front of which each comes (0: at the end).
std::vector<std::pair<std::string, std::uint64_t>> MessagesOf(MessageDump& reader,
                                                              const std::vector<std::string>& lines) {
  std::vector<std::pair<std::string, std::uint64_t>> found;
  std::uint64_t number = 0;
  for (const std::string& line : lines)
    if (const DumpMessage* message = reader.Before(line, ++number)) found.emplace_back(Hex(message->octets), number);
  if (const DumpMessage* message = reader.Finish()) found.emplace_back(Hex(message->octets), 0);
  return found;
}

TEST(RouterDump, MessagesFromNamesAndHexOrFramesFromTheirWords) {
  RouterDumpReader reader;
  using Found = std::vector<std::pair<std::string, std::uint64_t>>;
  // SETUP: 08, the reference 00 05 (two octets, as its hex has four digits),
  // type 5; Bearer capability 04 03 80 90 a3, Channel identification 18 03
  // a9 83 81, Called party number 70 03 81 and the digits "12" given as text.
  // CALL_PROC and DISCONNECT to the originator (80 05). Then q921 frames,
  // their address SAPI 0, TEI 89 (00 b3) with the C/R bit 0: an I frame,
  // N(S) 3 (06) N(R) 4 (08), around its own RELEASE; RR with N(R) 4; TEI
  // management on SAPI 63, TEI 127 (fc ff) in a UI frame (03) of management
  // entity 0f with Ri 86 (00 56), the type and Ai 127 (ff) or 89 (b3);
  // SABME with P (7f) and UA with F (73); an I frame whose hex goes on in
  // the line below it.
  EXPECT_EQ(MessagesOf(reader, Lines(ReadAll(kRouterDump))), (Found{{"080200050504038090a31803a98381700381"
                                                                     "3132",
                                                                     11},
                                                                    {"0802800502"
                                                                     "1803a98381",
                                                                     13},
                                                                    {"0802800545"
                                                                     "08028290",
                                                                     15},
                                                                    {"00b30608080200054d", 16},
                                                                    {"00b30108", 17},
                                                                    {"fcff030f005601ff", 18},
                                                                    {"fcff030f005602b3", 19},
                                                                    {"00b37f", 20},
                                                                    {"00b373", 21},
                                                                    {"00b30808"
                                                                     "080182021801891e028188",
                                                                     23}}));
}

TEST(RouterDump, WordsThatTellNoFrameAreOnlyCopied) {
  RouterDumpReader reader;
  // A kind with a letter behind it that is no command/response mark, a TEI
  // past 127, an I frame without N(S): no frame. INFO with pd and callref
  // is Q.931's INFORMATION (7b), not a q921 information frame.
  EXPECT_EQ(
      MessagesOf(reader,
                 {"ISDN BR0: TX -> RRx sapi = 0 tei = 89 nr = 1", "ISDN BR0: TX -> RR sapi = 0 tei = 128 nr = 1",
                  "ISDN BR0: TX -> INFOc sapi = 0 tei = 1 nr = 1  i = 0x0801",
                  "ISDN BR0: TX -> INFO pd = 8  callref = 0x01", "ISDN BR0: RX <- RRp sapi = 1 tei = 0 nr = 127"}),
      (std::vector<std::pair<std::string, std::uint64_t>>{{"0801017b", 5}, {"040101ff", 0}}));
}

TEST(RouterDump, TheInputsStartTellsTheFormat) {
  const InputFormat& format = RouterDumpFormat();
  EXPECT_EQ(format.Recognise("Router#debug isdn q931\n*Mar 14 09:15:02.381: ISDN Se0/0:23 Q931: TX -> SETUP pd = 8  "
                             "callref = 0x0005\n"),
            Recognition::Yes);
  EXPECT_EQ(format.Recognise("ISDN BR0: RX <- INFOc sapi = 0 tei = 89 ns = 0 nr = 0  i = 0x08018502\n"),
            Recognition::Yes);
  EXPECT_EQ(format.Recognise("ISDN BR0: RX <- RRr sapi = 0 tei = 89 nr = 4\n"), Recognition::Yes);
  EXPECT_EQ(format.Recognise("> Protocol Discriminator: Q.931 (8)  len=3\n"), Recognition::No);
  EXPECT_EQ(PbxDumpFormat().Recognise("ISDN BR0: RX <- INFOc sapi = 0 tei = 89 i = 0x08\n"), Recognition::No);
}

TEST(HexDump, FramesFromTheHexLinesBehindEachHeader) {
  HexDumpReader reader;
  using Found = std::vector<std::pair<std::string, std::uint64_t>>;
  // Offsets and a text column left out, octets apart or two together, an
  // offset with a colon; the blank line ends the third frame, a header with
  // no hex behind it is none, the last frame ends with the input.
  EXPECT_EQ(MessagesOf(reader, Lines(ReadAll(kHexDump))), (Found{{"0001000008020005"
                                                                  "0504038090a3",
                                                                  5},
                                                                 {"0201020008028005021803a98381", 7},
                                                                 {"02010204080280054508028290", 11},
                                                                 {"00010105", 0}}));
}

TEST(HexDump, LinesThatAreNoHexLines) {
  HexDumpReader reader;
  // An odd group, a word among the octets, text behind one blank: each ends
  // the frame with what it had (two octets), and is no frame line itself.
  EXPECT_EQ(MessagesOf(reader, {"TX 09:00:00", "02 01", "02 010", "TX 09:00:01", "02 01", "02 zz 03", "TX 09:00:02",
                                "02 01", "02 03 x", "09:00:03 no direction", "02 01"}),
            (std::vector<std::pair<std::string, std::uint64_t>>{{"0201", 3}, {"0201", 6}, {"0201", 9}}));
  const InputFormat& format = HexDumpFormat();
  EXPECT_EQ(format.Recognise("a title\nRX 09:15:02.500\n  0000  02 01 02 04\n"), Recognition::Yes);
  EXPECT_EQ(format.Recognise("RX 09:15:02.500\nnot hex\n"), Recognition::No);
  // A trace log's frame line is no header: its octets stand on its own line.
  EXPECT_EQ(format.Recognise("00001 2026-03-14 09:15:02.306 **** D-CH TX HDLC:3  | 0x00 0x01 0x01\n"
                             "00002 2026-03-14 09:15:02.307 **** D-CH RX HDLC:3  | 0x00 0x01 0x01\n"),
            Recognition::No);
}

class DumpRun : public ScratchDirectoryTest {};

TEST_F(DumpRun, RouterDumpIntoEveryOutput) {
  const Finished run = Velmora(kRouterDump + " -");
  EXPECT_EQ(run.status, 0) << run.err;
  // Behind the SETUP's last element line (line 10), before line 11.
  const std::string setupEnd =
      "                Plan:ISDN, Type:Unknown\nISDN Layer 3: Q.931 protocol message\nMessage type:SETUP\n";
  EXPECT_NE(run.out.find(setupEnd), std::string::npos) << run.out;
  EXPECT_NE(run.out.find("\t\tNumber digits (IA5)= 0x31 0x32\nMar 14 09:15:02.500"), std::string::npos);
  // The q921 frames' layer 2 from their words.
  EXPECT_NE(run.out.find("nr = 4  i = 0x080200054D\nISDN Layer 2: Information transfer\nISDN Layer 3: Q.931 protocol "
                         "message\nMessage type:RELEASE\n"),
            std::string::npos);
  EXPECT_NE(run.out.find("sapi = 0 tei = 89 nr = 4\nISDN Layer 2: Supervisory  RR(receive ready)\nMar 14"),
            std::string::npos);
  EXPECT_NE(run.out.find("SABMEp sapi = 0 tei = 89\nISDN Layer 2: SABME(set asynchronous balanced mode extended), "
                         "Request to establish link\nMar 14"),
            std::string::npos);
  EXPECT_NE(run.out.find("    1E028188\nISDN Layer 2: Information transfer\nISDN Layer 3: Q.931 protocol message\n"
                         "Message type:CALL PROCEEDING\n"),
            std::string::npos);
  // Their C/R bit is not in the dump: the detail level and JSON say so, and
  // a capture leaves them out rather than make one up.
  const Finished detail = Velmora("-q --detail full " + kRouterDump + " -");
  EXPECT_NE(detail.out.find("ISDN Layer 2: Supervisory  RR(receive ready)\n\tSAPI=0 (call control procedures)  TEI=89"
                            "  C/R unknown  N(R)=4  P/F=0\n"),
            std::string::npos)
      << detail.out;
  EXPECT_NE(detail.out.find("ISDN Layer 3: TEI management\n\tMessage type=00000010  Identity assigned\n"),
            std::string::npos);
  const Finished detailJson = Velmora("-q --detail full --to json " + kRouterDump + " -");
  EXPECT_NE(detailJson.out.find(R"j("layer2":{"kind":"Supervisory  RR(receive ready)","sapi":0,"cr":null,"tei":89,)j"),
            std::string::npos)
      << detailJson.out;
  EXPECT_EQ(Velmora("-q --to pcap " + kRouterDump + " " + Path("r.pcap")).status, 0);
  EXPECT_EQ(ReadAll(Path("r.pcap")).size(), 24U);  // the file header alone
  const Finished json = Velmora("-q --to json " + kRouterDump + " -");
  EXPECT_EQ(Numbers(json.out, R"("line":(\d+))"), (std::vector<int>{3, 11, 13, 15, 16, 17, 18, 19, 20, 21}));
  EXPECT_NE(json.out.find(R"({"line":3,"time":"09:15:02.381","direction":"TX",)"), std::string::npos) << json.out;
  const Finished calls = Velmora("-q --to calls-json " + kRouterDump + " -");
  // The PRI's call (TEI 0) ends at its DISCONNECT; the RELEASE on the BRI
  // (TEI 89, from the q921 frame's words) is a call of its own.
  EXPECT_NE(calls.out.find(R"("call_ref":5,"tei":0,"first_line":3,"last_line":13,"direction":"outgoing")"),
            std::string::npos)
      << calls.out;
  EXPECT_NE(calls.out.find(R"("call_ref":5,"tei":89,"first_line":15,"last_line":15,)"), std::string::npos);
  EXPECT_NE(calls.out.find(R"("called":"12")"), std::string::npos);
  EXPECT_EQ(Velmora("-q --from router " + kRouterDump + " -").out, run.out);
}

TEST_F(DumpRun, HexDumpIntoTheMessageFileJsonAndACapture) {
  const Finished run = Velmora(kHexDump + " -");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.out.find("  0008  05 04 03 80 90 a3        ......\nISDN Layer 2: Information transfer\nISDN Layer 3: "
                         "Q.931 protocol message\nMessage type:SETUP\n"),
            std::string::npos)
      << run.out;
  EXPECT_NE(run.out.find("  0008: 45 08 02 82 90\nISDN Layer 2: Information transfer\n"), std::string::npos);
  EXPECT_TRUE(run.out.ends_with("  00 01 01 05\nISDN Layer 2: Supervisory  RR(receive ready)\n")) << run.out;
  const Finished json = Velmora("-q --to json " + kHexDump + " -");
  EXPECT_EQ(Numbers(json.out, R"("line":(\d+))"), (std::vector<int>{2, 5, 7, 14}));
  EXPECT_NE(json.out.find(R"({"line":7,"time":"09:15:03.000","direction":"RX","octets":"0201020408028005450802)"),
            std::string::npos)
      << json.out;
  // Whole frames: a capture holds all four, each with its direction.
  EXPECT_EQ(Velmora("-q --to pcap " + kHexDump + " " + Path("h.pcap")).status, 0);
  EXPECT_EQ(ReadAll(Path("h.pcap")).size(), 24U + 4 * 16 + 4 * 16 + (14 + 14 + 13 + 4));
  EXPECT_EQ(Velmora("-q --from hex " + kHexDump + " -").out, Velmora("-q " + kHexDump + " -").out);
}

TEST_F(DumpRun, EveryLineCopiedAndEachDecodeBehindItsMessagesLastLine) {
  const Finished run = Velmora(kDump + " -");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_NE(run.err.find("1 message has fewer octets than the dump's length says"), std::string::npos) << run.err;
  const std::vector<std::string> input = Lines(ReadAll(kDump));
  const std::vector<std::string> output = Lines(run.out);
  // The input lines in order, and what stands in front of lines 13, 19, 31,
  // 34 and behind the last: a decode whose lines are not the input's.
  std::vector<std::string> decodedBefore[40];
  std::size_t at = 0;
  for (std::size_t line = 0; line < input.size(); ++line) {
    while (at < output.size() && output[at] != input[line]) decodedBefore[line + 1].push_back(output[at++]);
    ASSERT_LT(at, output.size()) << "input line " << line + 1 << " not copied in order";
    ++at;
  }
  const std::vector<std::string> tail(output.begin() + static_cast<std::ptrdiff_t>(at), output.end());
  for (std::size_t line = 1; line < 40; ++line) {
    const bool decodedHere = line == 13 || line == 19 || line == 31 || line == 34;
    EXPECT_EQ(!decodedBefore[line].empty(), decodedHere) << "in front of line " << line;
  }
  EXPECT_EQ(decodedBefore[13].front(), "ISDN Layer 3: Q.931 protocol message");  // no layer 2 known
  EXPECT_EQ(decodedBefore[13][1], "Message type:SETUP");
  EXPECT_EQ(decodedBefore[19][1], "Message type:CALL PROCEEDING");
  EXPECT_EQ(decodedBefore[31].front(), "ISDN Layer 2: Information transfer");  // the raw frame's
  EXPECT_EQ(decodedBefore[31][2], "Message type:DISCONNECT");
  EXPECT_EQ(decodedBefore[34], std::vector<std::string>{"ISDN Layer 2: Supervisory  RR(receive ready)"});
  EXPECT_EQ(tail, (std::vector<std::string>{"ISDN Layer 3: Q.931 protocol message", "Message type:RELEASE"}));
}

TEST_F(DumpRun, JsonCallsAndTheFormatForced) {
  const Finished json = Velmora("-q --to json " + kDump + " -");
  EXPECT_EQ(json.status, 0) << json.err;
  EXPECT_EQ(Numbers(json.out, R"("line":(\d+))"), (std::vector<int>{2, 14, 19, 31, 35}));
  EXPECT_NE(json.out.find(R"({"line":2,"time":"09:15:02","direction":"TX","octets":"0802000505040380)"),
            std::string::npos);
  EXPECT_NE(json.out.find(R"("layer2":null,"message":{"protocol_discriminator":8,"call_ref":5,"call_ref_flag":1,)"),
            std::string::npos);
  EXPECT_NE(json.out.find(R"j("layer2":{"kind":"Supervisory  RR(receive ready)"},"message":null})j"),
            std::string::npos);
  // One call from SETUP to RELEASE, outgoing (">" sent its SETUP), cleared by the callee with cause 16.
  const Finished calls = Velmora("-q --to calls-json " + kDump + " -");
  EXPECT_EQ(Numbers(calls.out, R"("first_line":(\d+))"), (std::vector<int>{2}));
  EXPECT_NE(calls.out.find(R"("direction":"outgoing")"), std::string::npos) << calls.out;
  EXPECT_NE(calls.out.find(R"("cause_value":16,)"), std::string::npos) << calls.out;
  // Filters select a dump's messages; the message file then holds their decodes.
  const Finished disconnect = Velmora("-q --message DISCONNECT " + kDump + " -");
  EXPECT_EQ(disconnect.out.rfind("ISDN Layer 2: Information transfer\n", 0), 0U) << disconnect.out;
  EXPECT_NE(disconnect.out.find("Message type:DISCONNECT\n"), std::string::npos);
  EXPECT_EQ(disconnect.out.find("SETUP"), std::string::npos);
  EXPECT_EQ(Numbers(Velmora("-q --to json --message setup,release " + kDump + " -").out, R"("line":(\d+))"),
            (std::vector<int>{2, 35}));
  // Read as a trace log it has no frame line; an unknown format is a usage error.
  EXPECT_EQ(Velmora("-q --from trace " + kDump + " -").status, 1);
  EXPECT_EQ(Velmora("-q --from pbx " + kDump + " -").out, Velmora("-q " + kDump + " -").out);
  const Finished unknown = Velmora("--from binary " + kDump + " -");
  EXPECT_EQ(unknown.status, 64);
  EXPECT_NE(unknown.err.find("--from: unknown input format 'binary' (trace, pcap, pbx, router or hex)"),
            std::string::npos);
}

}  // namespace
}  // namespace velmora::testing
