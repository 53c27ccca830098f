#pragma once
// The decode as data: one JSON object a frame line (JSON Lines), built from
// the same decode as the message file, whose field lines it carries as they
// stand there.
#include <cstdint>
#include <functional>
#include <memory>

#include "detail_level.h"
#include "output_writer.h"
#include "trace_consumer.h"
#include "translation.h"

namespace velmora {

// The consumer behind `--to json`, at the detail level given. The link memory is read at the start
// and left as the frames leave it, as the message file does.
// `select` keeps a frame line's object by its frame and line number (null:
// every frame line's); every frame is decoded, for the link memory.
std::unique_ptr<TraceConsumer> MakeJsonConsumer(OutputWriter& out, LinkMemory& link, DetailLevel detail,
                                                std::function<bool(OctetSpan, std::uint64_t)> select = nullptr);

}  // namespace velmora
