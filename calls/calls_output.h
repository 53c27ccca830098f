#pragma once
// The call summary a run writes instead of the message file: one row or
// object a call, in one of three forms.
#include <memory>

#include "output_writer.h"
#include "trace_consumer.h"

namespace velmora {

enum class CallsForm {
  Table,      // aligned text, one row a call, then the totals
  Csv,        // the table's rows as CSV, with a header row
  JsonLines,  // one JSON object a call
};

// A consumer for the run's frames that writes the calls through `out`.
std::unique_ptr<TraceConsumer> MakeCallsConsumer(OutputWriter& out, CallsForm form);

}  // namespace velmora
