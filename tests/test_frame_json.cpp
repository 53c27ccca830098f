// The JSON consumer on its own: what it writes does not depend on the
// writer's buffer, the moment is the line's as written, and the detail
// level adds the address and control fields and TEI management.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "frame_json.h"
#include "line_scanner.h"

namespace velmora {
namespace {

// The JSON of `lines`, one piece a line, through a writer of `capacity`.
// Each line is filled up to the frame line's 80 characters.
std::string JsonOf(const std::vector<std::string>& lines, std::size_t capacity,
                   DetailLevel detail = DetailLevel::Description) {
  std::string json;
  StringSink sink(json);
  OutputWriter writer(sink, capacity);
  LinkMemory link;
  const std::unique_ptr<TraceConsumer> consumer = MakeJsonConsumer(writer, link, detail);
  std::uint64_t number = 0;
  for (const std::string& line : lines) {
    const std::string filled = line + std::string(line.size() < 80 ? 80 - line.size() : 0, ' ');
    const std::string text = filled + "\n";
    Octet frame[kFrameCapacity];
    const std::optional<std::size_t> size = ScanFrameLine(filled, frame);
    consumer->Consume({text, ++number, size.has_value(), OctetSpan(frame, size.value_or(0))});
  }
  consumer->Finish();
  writer.Flush();
  return json;
}

const std::vector<std::string> kLines = {
    "00001 2026-03-14T09:15:02.306 **** D-CH TX HDLC:12  | 0x00 0x81 0x00 0x00 0x08 0x01 0x05 0x45 0x08 0x02 0x80 "
    "0x90",
    "a line between frames",
    "00003 09:15:03 **** D-CH HDLC:4  | 0x02 0x81 0x01 0x03",
    "00004 2026-03-14 **** RX HDLC:8  | 0xfe 0xff 0x03 0x0f 0x2c 0x51 0x02 0xb3",
};

TEST(FrameJson, TheSameWhateverTheWritersBuffer) {
  for (const DetailLevel detail : {DetailLevel::Description, DetailLevel::Full}) {
    const std::string large = JsonOf(kLines, 1 << 20, detail);
    // Too small for any object: every part goes the way round a string.
    EXPECT_EQ(JsonOf(kLines, 16, detail), large);
    EXPECT_EQ(JsonOf(kLines, 300, detail), large);
    EXPECT_EQ(std::count(large.begin(), large.end(), '\n'), 3);
  }
}

TEST(FrameJson, MomentAndDirectionAsTheLineHasThem) {
  const std::string json = JsonOf(kLines, 4096);
  EXPECT_NE(
      json.find(R"j({"line":1,"time":"2026-03-14T09:15:02.306","direction":"TX","octets":"0081000008010545080280)j"
                R"j(90","layer2":{"kind":"Information transfer"},"message":{"protocol_discriminator":8,)j"
                R"j("call_ref":5,"call_ref_flag":0,"call_ref_length":1,"type":69,"name":"DISCONNECT",)j"
                R"j("elements":[{"id":8,"codeset":0,"name":"Cause","octets":"08028090","fields":[)j"),
      std::string::npos)
      << json;
  EXPECT_NE(json.find(R"j({"line":3,"time":"09:15:03","direction":null,"octets":"02810103",)j"
                      R"j("layer2":{"kind":"Supervisory  RR(receive ready)"},"message":null})j"),
            std::string::npos)
      << json;
  EXPECT_NE(json.find(R"j({"line":4,"time":"2026-03-14","direction":"RX",)j"), std::string::npos) << json;
  // No detail-level member at the default level.
  EXPECT_EQ(json.find("sapi"), std::string::npos);
  EXPECT_EQ(json.find("tei_management"), std::string::npos);
}

TEST(FrameJson, TheDetailLevelAddsAddressControlAndTeiManagement) {
  const std::string json = JsonOf(kLines, 4096, DetailLevel::Full);
  // An I frame: N(S), N(R) and P; an RR response: N(R) and P/F, no N(S).
  EXPECT_NE(json.find(R"j("layer2":{"kind":"Information transfer","sapi":0,"cr":0,"tei":64,"ns":0,"nr":0,"pf":0},)j"
                      R"j("tei_management":null,"message":{)j"),
            std::string::npos)
      << json;
  EXPECT_NE(json.find(R"j("layer2":{"kind":"Supervisory  RR(receive ready)","sapi":0,"cr":1,"tei":64,"ns":null,)j"
                      R"j("nr":1,"pf":1},"tei_management":null,"message":null})j"),
            std::string::npos)
      << json;
  // Identity assigned with Ri 0x2c51 and Ai 89; a UI frame: P only.
  EXPECT_NE(json.find(R"j("layer2":{"kind":"UI(unnumbered information)","sapi":63,"cr":1,"tei":127,"ns":null,)j"
                      R"j("nr":null,"pf":0},"tei_management":{"type":"Identity assigned","ri":11345,"ai":89},)j"
                      R"j("message":null})j"),
            std::string::npos)
      << json;
}

}  // namespace
}  // namespace velmora
