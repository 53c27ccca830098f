#pragma once
// The call summary a run writes instead of the message file: one row or
// object a call, in one of three forms. The columns, the cells of a row and
// the totals are shared with the other views of the calls (the report).
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "output_writer.h"
#include "trace_consumer.h"

namespace velmora {

struct CallRecord;

enum class CallsForm {
  Table,      // aligned text, one row a call, then the totals
  Csv,        // the table's rows as CSV, with a header row
  JsonLines,  // one JSON object a call
};

// Whether a call is written; null: every call.
using CallSelection = std::function<bool(const CallRecord&)>;

// A consumer for the run's frames that writes the calls through `out`.
std::unique_ptr<TraceConsumer> MakeCallsConsumer(OutputWriter& out, CallsForm form, CallSelection select = nullptr);

// The columns of the table and the CSV. The table shows the cause value and
// its meaning in one column.
enum CallColumn : std::size_t {
  kFirstLine,
  kTei,
  kDirection,
  kCalling,
  kCalled,
  kBearer,
  kChannel,
  kAnswered,
  kDuration,
  kClearedBy,
  kClearedBySide,
  kCauseValue,
  kCauseText,
  kCallColumnCount,
};

// Table columns: heading, width, whether the cell stands to the right. The
// widths fit the common values; a longer one pushes the rest of its row on.
// The last, "cause", holds the cause value and its meaning.
struct CallTableColumn {
  std::string_view heading;
  std::size_t width;
  bool right;
};
inline constexpr CallTableColumn kCallTableColumns[] = {
    {"line", 7, true},      {"tei", 3, true},          {"direction", 9, false}, {"calling", 16, false},
    {"called", 16, false},  {"bearer", 32, false},     {"channel", 7, false},   {"answered", 8, false},
    {"duration", 10, true}, {"cleared by", 10, false}, {"side", 7, false},      {"cause", 0, false},
};

// The texts of one row; the strings keep their storage from row to row.
// An unknown value is an empty cell.
using CallCells = std::array<std::string, kCallColumnCount>;
void FillCallCells(CallCells& cells, const CallRecord& call);

// The totals under the table.
struct CallTotals {
  std::uint64_t calls = 0;
  std::uint64_t answered = 0;
  std::uint64_t clearedByCaller = 0;
  std::uint64_t clearedByCallee = 0;
  std::array<std::uint64_t, 128> causes{};  // by cause value

  void Count(const CallRecord& call);
  // The cause values seen, most frequent first (equal counts by value).
  std::vector<std::uint8_t> CausesByCount() const;
};

}  // namespace velmora
