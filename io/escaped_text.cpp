#include "escaped_text.h"

#include "octet.h"

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

}  // namespace

void AppendEscaped(std::string& to, std::string_view text, const TextEscapes& escapes) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto code = static_cast<unsigned char>(text[i]);
    if (escapes.lineSeparators && code == 0xE2 && i + 2 < text.size() && text[i + 1] == '\x80' &&
        (text[i + 2] == '\xA8' || text[i + 2] == '\xA9')) {
      // U+2028 and U+2029 are E2 80 A8 and E2 80 A9 in UTF-8.
      AppendUnicodeEscape(to, text[i + 2] == '\xA8' ? 0x2028 : 0x2029);
      i += 2;
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
