#pragma once
// Runs a piece of decoding with g_outputFile pointed at a string, so a test
// can compare the exact text that was printed.
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "core/globals.h"
#include "q931/element.h"

namespace velmora::testing {

template <typename Body>
std::string CaptureOutput(Body&& body) {
  std::string text;
  StringSink sink(text);
  OutputWriter writer(sink, 64);
  OutputWriter* previous = g_outputFile;
  g_outputFile = &writer;
  std::forward<Body>(body)();
  writer.Flush();
  g_outputFile = previous;
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
  result.text = CaptureOutput([&] { result.count = decoder(ElementOctets(OctetSpan(octets))); });
  return result;
}

}  // namespace velmora::testing
