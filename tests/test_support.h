#pragma once
// Runs a piece of decoding with a writer into a string, so a test can
// compare the exact text that was printed.
#include <gtest/gtest.h>

#include <initializer_list>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "core/output_writer.h"
#include "q931/element.h"

namespace velmora::testing {

template <typename Body>
std::string CaptureOutput(Body&& body) {
  std::string text;
  StringSink sink(text);
  OutputWriter writer(sink, 64);
  std::forward<Body>(body)(writer);
  writer.Flush();
  return text;
}

// What an element decoder printed and the count it returned.
struct Decoded {
  std::string text;
  int count = 0;
};

// Decodes octets that stand at the very end of a frame: nothing follows them,
// so a decoder that reads past its element's end reads past the frame.
inline Decoded DecodeOctets(ElementDecoder decoder, std::vector<Octet> octets) {
  Decoded result;
  result.text =
      CaptureOutput([&](OutputWriter& out) { result.count = decoder(out, ElementOctets(OctetSpan(octets))); });
  return result;
}

// One row of a decoder table: octets at the frame's end, the exact text
// and the count the decoder must give for them.
struct ElementCase {
  std::vector<Octet> octets;
  std::string text;
  int count;
};
// The same, for tables that mix several decoders.
struct DecoderCase {
  ElementDecoder decoder;
  std::vector<Octet> octets;
  std::string text;
  int count;
};

inline void ExpectDecodes(ElementDecoder decoder, const std::vector<Octet>& octets, const std::string& text, int count,
                          std::size_t row) {
  SCOPED_TRACE("table row " + std::to_string(row));
  const Decoded decoded = DecodeOctets(decoder, octets);
  EXPECT_EQ(decoded.text, text);
  EXPECT_EQ(decoded.count, count);
}
inline void ExpectDecodes(ElementDecoder decoder, std::span<const ElementCase> cases) {
  for (std::size_t row = 0; row < cases.size(); ++row)
    ExpectDecodes(decoder, cases[row].octets, cases[row].text, cases[row].count, row);
}
inline void ExpectDecodes(std::span<const DecoderCase> cases) {
  for (std::size_t row = 0; row < cases.size(); ++row)
    ExpectDecodes(cases[row].decoder, cases[row].octets, cases[row].text, cases[row].count, row);
}

}  // namespace velmora::testing
