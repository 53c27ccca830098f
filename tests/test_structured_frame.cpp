// The structured sink: a frame decoded once, its text split into the parts
// that JSON carries, each part the message file's own text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "decode_context.h"
#include "lapd.h"
#include "structured_frame.h"

namespace velmora {
namespace {

struct Split {
  std::string text;
  StructuredFrame frame;
};

// Decodes the frame into a writer with the sink attached, behind some text
// already written, as a run's writer has it.
void Decode(const std::vector<Octet>& octets, Split& split) {
  StringSink sink(split.text);
  OutputWriter writer(sink, 64);
  writer.Put("text written before the frame\n");
  writer.Flush();
  split.text.clear();
  writer.SetFieldSink(&split.frame);
  DecodeContext context{writer};
  split.frame.Begin(writer.BytesWritten());
  DecodeLapdFrame(context, octets);
  writer.Flush();
  split.frame.Split(split.text);
}

TEST(StructuredFrame, PartsAreTheMessageFileLinesSplit) {
  // A DISCONNECT with a Cause (diagnostics included), a locking shift to
  // codeset 6 and an element behind it, then a non-locking shift to 5 and
  // two more elements.
  // The parts are views into the decoded text; the octets are copied.
  const std::vector<Octet> octets = {0x02, 0x81, 0x00, 0x02, 0x08, 0x01, 0x85, 0x45, 0x08, 0x03, 0x81, 0x95, 0x30,
                                     0x96, 0x08, 0x02, 0x81, 0x91, 0x9D, 0x1C, 0x01, 0x80, 0x08, 0x02, 0x80, 0x90};
  Split split;
  Decode(octets, split);
  const StructuredFrame& frame = split.frame;
  EXPECT_EQ(frame.layer2Kind, "Information transfer");
  EXPECT_TRUE(frame.hasMessageType);
  EXPECT_EQ(frame.messageName, "DISCONNECT");
  ASSERT_EQ(frame.Elements().size(), 6U);
  const std::vector<unsigned> codesets = {0, 0, 6, 6, 5, 6};
  const std::vector<Octet> identifiers = {0x08, 0x96, 0x08, 0x9D, 0x1C, 0x08};
  for (std::size_t e = 0; e < 6; ++e) {
    EXPECT_EQ(frame.Elements()[e].codeset, codesets[e]) << e;
    EXPECT_EQ(frame.Elements()[e].Identifier(), identifiers[e]) << e;
  }
  const ElementPart& cause = frame.Elements()[0];
  EXPECT_EQ(cause.name, "Cause");
  EXPECT_EQ(cause.octets.size(), 5U);
  // Every part stands in the text as a line of its own, with its tabs.
  for (const ElementPart& element : frame.Elements()) {
    EXPECT_NE(split.text.find("\tInformation element:" + std::string(element.name) + "\n"), std::string::npos);
    for (const FieldPart& field : element.fields) {
      const std::string line = std::string(field.diagnostic ? "\t\t\t" : "\t\t") + std::string(field.text) + "\n";
      EXPECT_NE(split.text.find(line), std::string::npos) << line;
      if (field.coded) {
        EXPECT_EQ(std::string(field.name) + "=" + std::string(field.bits) + "  " + std::string(field.meaning),
                  field.text);
      }
    }
  }
  const FieldPart& location = cause.fields.at(1);
  EXPECT_EQ(location.name, "Location");
  EXPECT_EQ(location.bits, "0001");
  EXPECT_TRUE(location.coded);
}

TEST(StructuredFrame, FramesWithoutElementsAndUnknownKinds) {
  Split split;
  Decode({0x00, 0x81, 0x01, 0x02}, split);  // RR
  EXPECT_EQ(split.frame.layer2Kind, "Supervisory  RR(receive ready)");
  EXPECT_FALSE(split.frame.hasMessageType);
  EXPECT_TRUE(split.frame.Elements().empty());
  // A message type that no row names: "Message type:" and nothing more.
  Decode({0x00, 0x81, 0x00, 0x00, 0x08, 0x01, 0x01, 0x7E, 0x08, 0x02, 0x80, 0x90}, split);
  EXPECT_TRUE(split.frame.hasMessageType);
  EXPECT_EQ(split.frame.messageName, "");
  EXPECT_TRUE(split.frame.Elements().empty());
}

}  // namespace
}  // namespace velmora
