#pragma once
// What a frame line tells about its frame besides the octets: the direction
// of a whole-word TX or RX, and the moment of a date YYYY-MM-DD and a time
// hh:mm:ss[.fraction], when they stand on the line before its "HDLC" marker
// ("00005 2026-03-14 09:15:02.306 **** D-CH TX HDLC:38 ..."). The capture
// export and the call summary read frame lines by these rules alone.
#include <cstdint>
#include <optional>
#include <string_view>

namespace velmora {

enum class FrameDirection : std::uint8_t { Unknown, Sent, Received };  // TX, RX

// "TX" or "RX" as a frame line writes them; empty for Unknown.
constexpr std::string_view DirectionWord(FrameDirection direction) {
  return direction == FrameDirection::Sent ? "TX" : direction == FrameDirection::Received ? "RX" : "";
}

struct LineDate {
  int year;
  int month;  // 1 to 12
  int day;    // 1 to 31
};

struct LineTime {
  int hour;                   // 0 to 23
  int minute;                 // 0 to 59
  int second;                 // 0 to 60 (a leap second)
  std::uint32_t microsecond;  // the fraction, cut to six digits
};

struct FrameLineFacts {
  FrameDirection direction = FrameDirection::Unknown;
  std::optional<LineDate> date;
  std::optional<LineTime> time;
  std::string_view dateText;  // as written on the line; empty without a date
  std::string_view timeText;  // as written, fraction included; empty without a time
};

// The first whole-word TX or RX (any case), the first date and the first time
// before the line's first "HDLC" (the whole line when it has none). A token
// that only looks like a date or a time (month 13, 25:00:00) is none.
FrameLineFacts ReadFrameLineFacts(std::string_view line);

// A moment as the frame line writes it: the date and the time joined as
// they stand on the line by a blank or a T (by a blank when anything else
// or more stands between them), or the one of them the line has. Kept to 31 characters: behind a date, only a
// fraction of more than eleven digits is cut.
class MomentText {
 public:
  void Assign(const FrameLineFacts& facts);
  std::string_view View() const { return {text_, size_}; }
  bool Empty() const { return size_ == 0; }

 private:
  void Append(std::string_view part);

  char text_[31] = {};
  std::uint8_t size_ = 0;
};

// Microseconds since 1970-01-01 00:00:00, the date and time taken as UTC.
std::int64_t MicrosecondsSinceEpoch(const LineDate& date, const LineTime& time);

// Microseconds since midnight.
std::int64_t MicrosecondsOfDay(const LineTime& time);
inline constexpr std::int64_t kMicrosecondsPerDay = 86400LL * 1000000;

// A moment as a date and a time of day, UTC: the inverse of
// MicrosecondsSinceEpoch, for the calendar's years -32767 to 32767 (a
// moment beyond is shown at that end).
struct LineMoment {
  LineDate date;
  LineTime time;
};
LineMoment MomentOf(std::int64_t microsecondsSinceEpoch);

// The moments of successive frame lines, for a capture of them: a line's own
// date and time; a time without a date on the date of the last frame line
// that had one (1970-01-01 before any); a line without a time one
// microsecond after the frame line before it, the first at 1970-01-01
// 00:00:00. A date without a time is kept for the lines after it.
class FrameClock {
 public:
  // The next frame line's moment, in microseconds since 1970-01-01 UTC.
  std::int64_t Next(const FrameLineFacts& facts);

 private:
  LineDate lastDate_{1970, 1, 1};
  std::optional<std::int64_t> previous_;
};

}  // namespace velmora
