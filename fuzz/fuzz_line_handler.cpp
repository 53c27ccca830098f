// The line handler on arbitrary bytes, one piece at a time as the run cuts
// them, the link memory carried from piece to piece. Each piece lives in a
// heap block of its own size, so a read past it is caught. Each piece is
// also decoded from both link states and from the unknown state that a
// parallel run starts its chunks in, to hold the run's later fix of the UA
// wording to what the decoder really does.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "core/globals.h"
#include "core/lapd.h"
#include "core/line_scanner.h"
#include "fuzz/fuzz_support.h"

namespace {

using velmora::fuzz::Printable;
using velmora::fuzz::Require;

constexpr std::string_view kLayer2 = "ISDN Layer 2: ";

// How many cells a frame line offers, worked out independently of the
// scanner: cell k counts when its two digit characters stand before the
// line end; the length field is capped at the 300-octet buffer.
std::size_t ExpectedOctetCount(std::string_view line) {
  const std::size_t anchor = line.find("HDLC");
  std::size_t position = anchor + 5;
  std::size_t announced = 0;
  while (position < line.size() && line[position] >= '0' && line[position] <= '9') {
    announced = announced > 1000 ? announced : announced * 10 + static_cast<std::size_t>(line[position] - '0');
    ++position;
  }
  std::size_t textEnd = line.size();
  if (textEnd > 0 && line[textEnd - 1] == '\n') --textEnd;
  std::size_t present = 0;
  while (position + 4 + 5 * present + 3 < textEnd) ++present;
  std::size_t count = announced < velmora::kFrameCapacity ? announced : velmora::kFrameCapacity;
  return count < present ? count : present;
}

void CheckPiece(std::string_view piece) {
  // The piece in a block of exactly its size.
  const auto block = velmora::fuzz::ExactCopy<char>(piece.data(), piece.size());
  const std::string_view line(block.get(), piece.size());

  // Decoded from both link states, and from the unknown state with the UA
  // wordings noted: those, fixed up, must give what either state gives.
  const int carried = velmora::g_linkSetupPending;
  int after[2];
  std::string outputs[2];
  for (int state = 0; state < 2; ++state) {
    velmora::g_linkSetupPending = state;
    velmora::g_frameFound = false;
    outputs[state] = velmora::fuzz::Capture([&] { velmora::TranslateTraceLine(line); });
    after[state] = velmora::g_linkSetupPending;
  }
  Require(after[0] >= 0 && after[0] <= 1 && after[1] >= 0 && after[1] <= 1, "link memory is 0 or 1");
  Require(after[0] == 0 || after[1] == 1 || after[0] == after[1], "a piece sets, clears or keeps the memory");

  std::vector<std::uint64_t> pending;
  velmora::g_linkSetupPending = velmora::kLinkMemoryUnknown;
  velmora::g_pendingUaWordings = &pending;
  std::string unknown = velmora::fuzz::Capture([&] { velmora::TranslateTraceLine(line); });
  velmora::g_pendingUaWordings = nullptr;
  const int afterUnknown = velmora::g_linkSetupPending;
  Require(afterUnknown == (after[0] == after[1] ? after[0] : velmora::kLinkMemoryUnknown),
          "from the unknown state a piece decides the memory exactly when it does from both", Printable(line));
  Require(unknown == outputs[0], "the unknown state writes the DISC wording", Printable(line));
  for (const std::uint64_t at : pending) unknown.replace(at, velmora::kUaAfterSabme.size(), velmora::kUaAfterSabme);
  Require(unknown == outputs[1], "the noted UA wordings, fixed up, give the SABME state's output", Printable(line));

  velmora::g_linkSetupPending = after[carried];
  const std::string& out = outputs[carried];
  Require(out.compare(0, line.size(), line) == 0, "the output for a piece begins with the piece",
          "piece: " + Printable(line) + "\noutput: " + Printable(out));
  const std::string_view rest = std::string_view(out).substr(line.size());
  const bool frameLine = velmora::IsFrameLine(line);
  Require(velmora::g_frameFound == frameLine, "a frame line, and only a frame line, counts as found", Printable(line));
  if (!frameLine) {
    Require(rest.empty(), "a line that is not a frame line is only copied", Printable(out));
    return;
  }
  Require(rest.substr(0, kLayer2.size()) == kLayer2, "a frame line's decoding starts with the layer-2 line",
          Printable(rest));

  velmora::Octet frame[velmora::kFrameCapacity];
  const std::size_t count = velmora::ReadFrameOctets(line, frame);
  Require(count == ExpectedOctetCount(line), "the scanner takes exactly the cells the line holds",
          "got " + std::to_string(count) + ", expected " + std::to_string(ExpectedOctetCount(line)) + "\n" +
              Printable(line));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Each input starts from a link with no SABME pending, so a crash replays.
  velmora::g_linkSetupPending = 0;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  for (const std::string_view piece : velmora::fuzz::SplitPieces(input)) CheckPiece(piece);
  return 0;
}
