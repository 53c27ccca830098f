#pragma once
// The structured side of a decode: one frame's decoded text, as the message
// file has it, split into its parts. The writer the frame is decoded into
// tells this sink where each element's lines begin; the lines themselves are
// the text's, so every part is the message file's own wording.
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "field_sink.h"
#include "octet.h"

namespace velmora {

// One line of an element below its heading, without its leading tabs and
// its line end. A line of the form "name=bits  meaning" (bits of 0 and 1)
// has its parts; any other (an octet string, a decimal value) only `text`,
// with `name` the part before "=" where it has one.
struct FieldPart {
  std::string_view text;
  std::string_view name;
  std::string_view bits;     // empty where the line shows no bits
  std::string_view meaning;  // empty where the line shows none
  bool coded = false;        // the line has the form name=bits  meaning
  bool diagnostic = false;   // a cause diagnostic's line (three tabs)
};

struct ElementPart {
  OctetSpan octets;       // those the element occupies in the frame, identifier first
  unsigned codeset = 0;   // 0 unless a shift before it says otherwise
  std::string_view name;  // the heading behind "Information element:"
  std::vector<FieldPart> fields;
  Octet Identifier() const { return octets.empty() ? Octet{0} : octets[0]; }
  // The octets, kept here: the decoder's frame buffer lives only while the
  // line is handled.
  std::vector<Octet> storage;
};

class StructuredFrame final : public FieldSink {
 public:
  // Before a frame is decoded into a writer at `textOffset`.
  void Begin(std::uint64_t textOffset);
  void Element(std::uint64_t textOffset, OctetSpan octets) override;
  // Splits the frame's decoded text, written from the Begin offset on. The
  // parts are views into `text`.
  void Split(std::string_view text);

  std::string_view layer2Kind;  // behind "ISDN Layer 2: ", up to the line end
  bool hasMessageType = false;
  std::string_view messageName;  // behind "Message type:"; empty for a type without a name
  std::span<const ElementPart> Elements() const { return {elements_.data(), count_}; }

 private:
  std::uint64_t base_ = 0;
  std::vector<std::uint64_t> starts_;
  // Kept from frame to frame, with their fields' room, so that a frame
  // costs no allocation once the largest has been seen.
  std::vector<ElementPart> elements_;
  std::size_t count_ = 0;
};

}  // namespace velmora
