#pragma once
// What the line handler and the LAPD decoder work with while a stretch of
// trace is decoded: the writer every decoder prints to, the link memory
// behind the UA wording and whether a frame line has been seen. One per run,
// or per chunk of a parallel run; passed down by reference.
#include <cstdint>
#include <vector>

#include "detail_level.h"
#include "output_writer.h"
#include "scan_notes.h"

namespace velmora {

// The link memory: SABME makes a setup pending, DISC ends it, UA reads it.
// Unknown while a parallel run decodes a chunk before it knows the memory
// at the chunk's start; the chunk's first SABME or DISC decides it.
enum class LinkSetup : std::int8_t { NotPending, Pending, Unknown };

struct DecodeContext {
  OutputWriter& out;
  LinkSetup linkSetup = LinkSetup::NotPending;
  // Set by the line handler on every frame line.
  bool frameFound = false;
  // While linkSetup is Unknown: where each UA line wrote the DISC wording
  // (an offset into the output), so the run can put the SABME wording there
  // once it knows the memory. Null outside a parallel run.
  std::vector<std::uint64_t>* pendingUaWordings = nullptr;
  // Whole lines handled so far (pieces that ended in "\n"), which numbers
  // the notes.
  std::uint64_t linesDone = 0;
  ScanNotes notes = {};
  DetailLevel detail = DetailLevel::Description;
};

}  // namespace velmora
