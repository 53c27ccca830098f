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

#include "fuzz_support.h"
#include "lapd.h"
#include "line_scanner.h"

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

using velmora::LinkSetup;

// The piece's output from a link memory, the memory it leaves and whether it
// counted as a frame line; UA wordings noted when the memory is unknown.
struct Decoded {
  std::string output;
  LinkSetup linkAfter;
  bool frameFound;
};
Decoded DecodeFrom(LinkSetup link, std::string_view line, std::vector<std::uint64_t>* pending = nullptr) {
  Decoded decoded{};
  decoded.output = velmora::fuzz::Capture([&](velmora::OutputWriter& out) {
    velmora::DecodeContext context{out, link, false, pending};
    velmora::TranslateTraceLine(context, line);
    decoded.linkAfter = context.linkSetup;
    decoded.frameFound = context.frameFound;
  });
  return decoded;
}

// Decodes one piece from the carried link memory; returns the memory it leaves.
LinkSetup CheckPiece(std::string_view piece, LinkSetup carried) {
  // The piece in a block of exactly its size.
  const auto block = velmora::fuzz::ExactCopy<char>(piece.data(), piece.size());
  const std::string_view line(block.get(), piece.size());

  // Decoded from both link states, and from the unknown state with the UA
  // wordings noted: those, fixed up, must give what either state gives.
  const Decoded notPending = DecodeFrom(LinkSetup::NotPending, line);
  const Decoded pending = DecodeFrom(LinkSetup::Pending, line);
  Require(notPending.linkAfter != LinkSetup::Unknown && pending.linkAfter != LinkSetup::Unknown,
          "a known link memory stays known");
  Require(notPending.linkAfter == LinkSetup::NotPending || pending.linkAfter == LinkSetup::Pending ||
              notPending.linkAfter == pending.linkAfter,
          "a piece sets, clears or keeps the memory");

  std::vector<std::uint64_t> notes;
  Decoded unknown = DecodeFrom(LinkSetup::Unknown, line, &notes);
  Require(unknown.linkAfter == (notPending.linkAfter == pending.linkAfter ? notPending.linkAfter : LinkSetup::Unknown),
          "from the unknown state a piece decides the memory exactly when it does from both",
          [&] { return Printable(line); });
  Require(unknown.output == notPending.output, "the unknown state writes the DISC wording",
          [&] { return Printable(line); });
  for (const std::uint64_t at : notes)
    unknown.output.replace(at, velmora::kUaAfterSabme.size(), velmora::kUaAfterSabme);
  Require(unknown.output == pending.output, "the noted UA wordings, fixed up, give the SABME state's output",
          [&] { return Printable(line); });

  const Decoded& decoded = carried == LinkSetup::Pending ? pending : notPending;
  const std::string& out = decoded.output;
  Require(out.compare(0, line.size(), line) == 0, "the output for a piece begins with the piece",
          [&] { return "piece: " + Printable(line) + "\noutput: " + Printable(out); });
  const std::string_view rest = std::string_view(out).substr(line.size());
  const bool frameLine = velmora::IsFrameLine(line);
  Require(decoded.frameFound == frameLine, "a frame line, and only a frame line, counts as found",
          [&] { return Printable(line); });
  if (!frameLine) {
    Require(rest.empty(), "a line that is not a frame line is only copied", [&] { return Printable(out); });
    return decoded.linkAfter;
  }
  Require(rest.substr(0, kLayer2.size()) == kLayer2, "a frame line's decoding starts with the layer-2 line",
          [&] { return Printable(rest); });

  velmora::Octet frame[velmora::kFrameCapacity];
  const std::size_t count = velmora::ReadFrameOctets(line, frame);
  Require(count == ExpectedOctetCount(line), "the scanner takes exactly the cells the line holds", [&] {
    return "got " + std::to_string(count) + ", expected " + std::to_string(ExpectedOctetCount(line)) + "\n" +
           Printable(line);
  });
  return decoded.linkAfter;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Each input starts from a link with no SABME pending, so a crash replays.
  LinkSetup link = LinkSetup::NotPending;
  const std::string_view input(reinterpret_cast<const char*>(data), size);
  for (const std::string_view piece : velmora::fuzz::SplitPieces(input)) link = CheckPiece(piece, link);
  return 0;
}
