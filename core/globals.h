#pragma once
// State shared by the translation run, the line handler and the decoders.
//
// Each is thread-local: one run holds one thread from start to end, and a
// parallel run gives each worker its own output and link memory.
#include "core/output_writer.h"

namespace velmora {

// The open output message file of the current run; null outside a run.
extern thread_local OutputWriter* g_outputFile;

// Set by the line handler on every frame line; cleared at the start of a run.
extern thread_local bool g_frameFound;

// SABME sets it, DISC clears it, UA reads it. Never reset by a run, so it
// carries over from one run to the next on the same thread.
extern thread_local int g_linkSetupPending;

// The writer the decoders print to. Only called while a run is under way.
inline OutputWriter& Out() { return *g_outputFile; }

}  // namespace velmora
