#include "escaped_text.h"

#include <bit>

#include "octet.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace velmora {
namespace {

void AppendUnicodeEscape(std::string& to, unsigned code) {
  to += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) to += kHexDigits[(code >> shift) & 0xF];
}

// Whether a character is escaped; the line separators are found apart.
bool Escaped(unsigned char code, const TextEscapes& escapes) {
  if (code < 0x20) return true;
  if (code == 0x7F) return escapes.deleteCharacter;
  if (code == '"' || code == '\\') return escapes.quoteAndBackslash;
  if (code == '<' || code == '>' || code == '&') return escapes.markup;
  return false;
}

// The length of the well-formed UTF-8 character at the start of `text`
// (RFC 3629: no overlong forms, no surrogates, nothing above U+10FFFF), or 0.
std::size_t Utf8Length(std::string_view text) {
  const auto at = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = at(0);
  std::size_t length = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  } else {
    return 0;
  }
  if (text.size() < length || at(1) < low || at(1) > high) return 0;
  for (std::size_t i = 2; i < length; ++i)
    if (at(i) < 0x80 || at(i) > 0xBF) return 0;
  return length;
}

// Characters that may need an escape in some form; every other one stands
// for itself in every form, and runs of them are copied whole.
constexpr bool MayNeedEscape(unsigned char code) {
  return code < 0x20 || code >= 0x7F || code == '"' || code == '\\' || code == '<' || code == '>' || code == '&';
}

}  // namespace

namespace {

// The run of characters at the start of `text` that stand for themselves in
// every form; or, with `jsonLines`, in a JSON string, tabs and line ends
// counted among them.
template <bool jsonLines>
std::size_t PlainRun(std::string_view text) {
  std::size_t at = 0;
#if defined(__SSE2__)
  // Below 0x20 and from 0x80 on are one signed compare: bytes from 0x80 are
  // negative.
  const __m128i space = _mm_set1_epi8(0x20);
  const auto equal = [](__m128i block, char c) { return _mm_cmpeq_epi8(block, _mm_set1_epi8(c)); };
  for (; at + 16 <= text.size(); at += 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text.data() + at));
    __m128i controls = _mm_cmplt_epi8(block, space);
    if constexpr (jsonLines)
      controls = _mm_andnot_si128(_mm_or_si128(equal(block, '\t'), equal(block, '\n')), controls);
    __m128i marked =
        _mm_or_si128(_mm_or_si128(controls, equal(block, '\x7f')), _mm_or_si128(equal(block, '"'), equal(block, '\\')));
    if constexpr (!jsonLines)
      marked =
          _mm_or_si128(marked, _mm_or_si128(_mm_or_si128(equal(block, '<'), equal(block, '>')), equal(block, '&')));
    const int mask = _mm_movemask_epi8(marked);
    if (mask != 0) return at + static_cast<std::size_t>(std::countr_zero(static_cast<unsigned>(mask)));
  }
#endif
  for (; at < text.size(); ++at) {
    const auto code = static_cast<unsigned char>(text[at]);
    if (jsonLines ? (code < 0x20 && code != '\t' && code != '\n') || code >= 0x7F || code == '"' || code == '\\'
                  : MayNeedEscape(code))
      break;
  }
  return at;
}

}  // namespace

std::size_t PlainLength(std::string_view text) { return PlainRun<false>(text); }

bool PlainJsonLines(std::string_view text) { return PlainRun<true>(text) == text.size(); }

void AppendEscaped(std::string& to, std::string_view text, const TextEscapes& escapes) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::size_t plain = i + PlainLength(text.substr(i));
    if (plain > i) {
      to.append(text.data() + i, plain - i);
      i = plain;
      if (i == text.size()) break;
    }
    const auto code = static_cast<unsigned char>(text[i]);
    if (escapes.lineSeparators && code == 0xE2 && i + 2 < text.size() && text[i + 1] == '\x80' &&
        (text[i + 2] == '\xA8' || text[i + 2] == '\xA9')) {
      // U+2028 and U+2029 are E2 80 A8 and E2 80 A9 in UTF-8.
      AppendUnicodeEscape(to, text[i + 2] == '\xA8' ? 0x2028 : 0x2029);
      i += 2;
    } else if (code >= 0x80 && escapes.invalidUtf8) {
      const std::size_t length = Utf8Length(text.substr(i));
      if (length == 0) {
        AppendUnicodeEscape(to, code);
      } else {
        to.append(text.substr(i, length));
        i += length - 1;
      }
    } else if (!Escaped(code, escapes)) {
      to += text[i];
    } else if (code == '"' || code == '\\') {
      to += '\\';
      to += text[i];
    } else if (escapes.tabAndNewlineShort && (code == '\t' || code == '\n')) {
      to += code == '\t' ? "\\t" : "\\n";
    } else {
      AppendUnicodeEscape(to, code);
    }
  }
}

}  // namespace velmora
