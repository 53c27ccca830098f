#pragma once
// velmora --to report: one self-contained HTML file of the calls in a trace.
// A header with the input's name, size, frame and call counts and the
// totals as a bar chart; the call table, sortable and filterable; and, for
// the call whose row is clicked, a ladder diagram of its Q.931 messages,
// each arrow showing its frame's decoded text as the message file has it.
//
// The file is written in one pass: the page's head first, then the calls'
// data in chunks as calls complete, the totals and the page's script last.
// The script renders the table from that data and draws a ladder on demand.
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "translation.h"

namespace velmora {

struct CallRecord;

struct ReportInput {
  std::string name;                   // shown as it is, escaped
  std::optional<std::uint64_t> size;  // in bytes; else the bytes the run reads
  // The calls the report shows; null: every call.
  std::function<bool(const CallRecord&)> select = nullptr;
};

TraceConsumerFactory CallReport(ReportInput input);

}  // namespace velmora
