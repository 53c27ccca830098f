#include "frame_line_facts.h"

#include <algorithm>
#include <bit>
#include <chrono>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora {
namespace {

constexpr bool IsDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool IsAlphanumeric(char c) { return IsDigit(c) || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'); }

// The value of `count` digits at `at`, or -1 when one of them is no digit.
int Digits(std::string_view text, std::size_t at, std::size_t count) {
  if (at + count > text.size()) return -1;
  int value = 0;
  for (std::size_t i = at; i < at + count; ++i) {
    if (!IsDigit(text[i])) return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

// A token stands alone: no letter or digit right before or right after it.
bool StandsAlone(std::string_view text, std::size_t begin, std::size_t end) {
  return (begin == 0 || !IsAlphanumeric(text[begin - 1])) && (end >= text.size() || !IsAlphanumeric(text[end]));
}

// "YYYY-MM-DD" at `at`.
std::optional<LineDate> DateAt(std::string_view text, std::size_t at) {
  if (at + 10 > text.size() || text[at + 4] != '-' || text[at + 7] != '-') return std::nullopt;
  const int year = Digits(text, at, 4);
  const int month = Digits(text, at + 5, 2);
  const int day = Digits(text, at + 8, 2);
  if (year < 0 || month < 1 || month > 12 || day < 1 || day > 31) return std::nullopt;
  // "2026-03-14T09:15:02" joins a date and a time with a T.
  const bool joinedToTime = at + 10 < text.size() && text[at + 10] == 'T';
  if (!joinedToTime && !StandsAlone(text, at, at + 10)) return std::nullopt;
  if (at > 0 && IsAlphanumeric(text[at - 1])) return std::nullopt;
  return LineDate{year, month, day};
}

// "hh:mm:ss" with an optional ".fraction" at `at`; `length` receives its size.
std::optional<LineTime> TimeAt(std::string_view text, std::size_t at, std::size_t& length) {
  if (at + 8 > text.size() || text[at + 2] != ':' || text[at + 5] != ':') return std::nullopt;
  const int hour = Digits(text, at, 2);
  const int minute = Digits(text, at + 3, 2);
  const int second = Digits(text, at + 6, 2);
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 60) return std::nullopt;
  std::size_t end = at + 8;
  std::uint32_t microsecond = 0;
  if (end + 1 < text.size() && text[end] == '.' && IsDigit(text[end + 1])) {
    std::uint32_t scale = 100000;
    for (++end; end < text.size() && IsDigit(text[end]); ++end) {
      microsecond += static_cast<std::uint32_t>(text[end] - '0') * scale;
      scale /= 10;
    }
  }
  const bool afterDate = at > 0 && text[at - 1] == 'T' && at >= 11 && IsDigit(text[at - 2]);
  if (!afterDate && at > 0 && (IsAlphanumeric(text[at - 1]) || text[at - 1] == ':')) return std::nullopt;
  if (end < text.size() && (IsAlphanumeric(text[end]) || text[end] == ':')) return std::nullopt;
  length = end - at;
  return LineTime{hour, minute, second, microsecond};
}

FrameDirection DirectionAt(std::string_view text, std::size_t at) {
  if (at + 2 > text.size() || (text[at + 1] | 0x20) != 'x' || !StandsAlone(text, at, at + 2))
    return FrameDirection::Unknown;
  switch (text[at] | 0x20) {
    case 't':
      return FrameDirection::Sent;
    case 'r':
      return FrameDirection::Received;
    default:
      return FrameDirection::Unknown;
  }
}

// Days from 1970-01-01 to a date of the proleptic Gregorian calendar. A day
// past the month's last (a line's 02-31) counts on into the next month.
std::int64_t DaysSinceEpoch(int year, int month, int day) {
  using namespace std::chrono;
  const year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                            std::chrono::day{static_cast<unsigned>(day)}};
  return sys_days{date}.time_since_epoch().count();
}

// The next place at or after `from` and before `end` where something may
// start: a digit (a date or a time) or an X (the end of a TX or an RX);
// `end` when there is none. Sixteen characters of `text` at a time, those
// from `end` on read but not taken: most of a line is neither.
std::size_t NextMark(std::string_view text, std::size_t from, std::size_t end) {
#if defined(__SSE2__)
  for (; from < end && from + 16 <= text.size(); from += 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + from));
    const __m128i digit =
        _mm_and_si128(_mm_cmpgt_epi8(block, _mm_set1_epi8('0' - 1)), _mm_cmplt_epi8(block, _mm_set1_epi8('9' + 1)));
    const __m128i x = _mm_cmpeq_epi8(_mm_or_si128(block, _mm_set1_epi8(0x20)), _mm_set1_epi8('x'));
    const int mask = _mm_movemask_epi8(_mm_or_si128(digit, x));
    if (mask != 0) return std::min(end, from + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(mask))));
  }
#endif
  while (from < end && !IsDigit(text[from]) && (text[from] | 0x20) != 'x') ++from;
  return std::min(from, end);
}

}  // namespace

FrameLineFacts ReadFrameLineFacts(std::string_view line) {
  const std::string_view head = line.substr(0, line.find("HDLC"));
  FrameLineFacts facts;
  // The marks are looked for in the whole line, which goes on behind the head.
  for (std::size_t at = NextMark(line, 0, head.size()); at < head.size(); at = NextMark(line, at + 1, head.size())) {
    if (!IsDigit(head[at])) {
      // An X ends a TX or an RX that starts right before it.
      if (facts.direction == FrameDirection::Unknown && at > 0) facts.direction = DirectionAt(head, at - 1);
      continue;
    }
    if (!facts.date) {
      if ((facts.date = DateAt(head, at))) {
        facts.dateText = head.substr(at, 10);
        at += 9;
        continue;
      }
    }
    if (!facts.time) {
      std::size_t length = 0;
      if ((facts.time = TimeAt(head, at, length))) {
        facts.timeText = head.substr(at, length);
        at += length - 1;
        continue;
      }
    }
    // Inside a run of digits nothing new starts.
    while (at + 1 < head.size() && IsDigit(head[at + 1])) ++at;
  }
  return facts;
}

void MomentText::Append(std::string_view part) {
  const std::size_t room = sizeof text_ - size_;
  const std::size_t taken = std::min(part.size(), room);
  std::copy_n(part.data(), taken, text_ + size_);
  size_ = static_cast<std::uint8_t>(size_ + taken);
}

void MomentText::Assign(const FrameLineFacts& facts) {
  size_ = 0;
  const std::string_view date = facts.dateText;
  const std::string_view time = facts.timeText;
  // Side by side ("2026-03-14 09:15:02.306", "2026-03-14T09:15:02"): as
  // written. Any other character between them (a tab, a control character)
  // becomes a blank, so that the moment is digits, "-", ":", ".", "T" and
  // blanks alone, safe in every output.
  if (!date.empty() && !time.empty() && time.data() == date.data() + date.size() + 1 &&
      (date.data()[date.size()] == ' ' || date.data()[date.size()] == 'T')) {
    Append({date.data(), date.size() + 1 + time.size()});
    return;
  }
  Append(date);
  if (!date.empty() && !time.empty()) Append(" ");
  Append(time);
}

std::int64_t MicrosecondsOfDay(const LineTime& time) {
  return ((time.hour * 60LL + time.minute) * 60 + time.second) * 1000000 + time.microsecond;
}

std::int64_t MicrosecondsSinceEpoch(const LineDate& date, const LineTime& time) {
  return DaysSinceEpoch(date.year, date.month, date.day) * kMicrosecondsPerDay + MicrosecondsOfDay(time);
}

LineMoment MomentOf(std::int64_t microsecondsSinceEpoch) {
  // Floor division, so that moments before 1970 fall on the day before.
  std::int64_t days = microsecondsSinceEpoch / kMicrosecondsPerDay;
  std::int64_t ofDay = microsecondsSinceEpoch % kMicrosecondsPerDay;
  if (ofDay < 0) {
    ofDay += kMicrosecondsPerDay;
    --days;
  }
  // The calendar's years reach from -32767 to 32767: a moment beyond,
  // which no trace or capture holds, is shown at that end.
  using namespace std::chrono;
  constexpr std::int64_t kFirstDay = sys_days{std::chrono::year::min() / January / 1}.time_since_epoch().count();
  constexpr std::int64_t kLastDay = sys_days{std::chrono::year::max() / December / 31}.time_since_epoch().count();
  const year_month_day date{sys_days{std::chrono::days{std::clamp(days, kFirstDay, kLastDay)}}};
  const int year = static_cast<int>(date.year());
  const int month = static_cast<int>(static_cast<unsigned>(date.month()));
  const int day = static_cast<int>(static_cast<unsigned>(date.day()));
  const std::int64_t seconds = ofDay / 1000000;
  return {{year, month, day},
          {static_cast<int>(seconds / 3600), static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60),
           static_cast<std::uint32_t>(ofDay % 1000000)}};
}

std::int64_t FrameClock::Next(const FrameLineFacts& facts) {
  if (facts.date) lastDate_ = *facts.date;
  const std::int64_t moment = facts.time  ? MicrosecondsSinceEpoch(lastDate_, *facts.time)
                              : previous_ ? *previous_ + 1
                                          : 0;
  previous_ = moment;
  return moment;
}

}  // namespace velmora
