#pragma once
// Decoding into a string, so a test can compare the exact text printed.
#include <gtest/gtest.h>

#include <span>
#include <string>
#include <utility>
#include <vector>

#include "element_registry.h"
#include "output_writer.h"
#include "q931_message.h"

namespace velmora::testing {

// Runs body(writer) with a writer into a string; a small buffer, so the
// writer's flushes are taken too.
template <typename Body>
std::string CaptureOutput(Body&& body) {
  std::string text;
  StringSink sink(text);
  OutputWriter writer(sink, 64);
  std::forward<Body>(body)(writer);
  writer.Flush();
  return text;
}

// Decodes octets that stand at the very end of a frame as the element their
// identifier names (the unknown-element dump when none): heading and field
// lines. Nothing follows them, so a decoder that reads past its element's
// end reads past the frame.
inline std::string DecodeOctets(const std::vector<Octet>& octets) {
  return CaptureOutput([&](OutputWriter& out) {
    const ElementOctets element{OctetSpan(octets)};
    DecodeElement(out, FindElement(element.Identifier()), element);
  });
}

// One row of a decoder table: octets at the frame's end and the exact text.
struct ElementCase {
  std::vector<Octet> octets;
  std::string text;
};
inline void ExpectDecodes(std::span<const ElementCase> cases) {
  for (std::size_t row = 0; row < cases.size(); ++row) {
    SCOPED_TRACE("table row " + std::to_string(row));
    EXPECT_EQ(DecodeOctets(cases[row].octets), cases[row].text);
  }
}

// The element lines a message's walk prints, from the message type octet on.
inline std::string Walked(const std::vector<Octet>& fromMessageType) {
  return CaptureOutput(
      [&](OutputWriter& out) { WalkElements(out, *FindMessageWalk(fromMessageType.front()), fromMessageType); });
}

}  // namespace velmora::testing
