#pragma once
// Text from a trace (digits, names, decoded lines) written into JSON, CSV or
// a table, with the characters that would break the form escaped. One
// escaper for every output; each form says which escapes it needs.
#include <string>
#include <string_view>

namespace velmora {

struct TextEscapes {
  bool quoteAndBackslash = false;   // '"' and '\' behind a backslash
  bool tabAndNewlineShort = false;  // "\t" and "\n" rather than \u0009, \u000a
  bool deleteCharacter = false;     // 0x7F as \u007f, as the other controls
  bool markup = false;              // < > & as \u003c \u003e \u0026
  bool lineSeparators = false;      // U+2028, U+2029 (UTF-8) as \u2028, \u2029
  bool invalidUtf8 = false;         // bytes that are no part of a UTF-8 character as \u00XX
};

// Control characters alone, as \u00XX: a table cell or a CSV field.
inline constexpr TextEscapes kControlEscapes{false, false, true, false, false, false};
// The body of a JSON string.
inline constexpr TextEscapes kJsonEscapes{true, false, true, false, false, false};
// The body of a JSON string that must be valid UTF-8 whatever the text's bytes.
inline constexpr TextEscapes kJsonUtf8Escapes{true, false, true, false, false, true};
// The body of a JSON string that stands inside an HTML <script> element:
// neither "</script" nor "<!--" can appear in it.
inline constexpr TextEscapes kScriptJsonEscapes{true, true, false, true, true, false};

// The length of the run at the start of `text` of characters that stand for
// themselves in every form: found 16 at a time, as most texts are one run.
std::size_t PlainLength(std::string_view text);

// Whether every character of `text` but its tabs and line ends stands for
// itself in a JSON string: a decoded frame's lines, checked once so that
// their parts need no check of their own.
bool PlainJsonLines(std::string_view text);

// Appends `text` with every control character below 0x20, and what
// `escapes` names besides, escaped; everything else as it is.
void AppendEscaped(std::string& to, std::string_view text, const TextEscapes& escapes);

}  // namespace velmora
