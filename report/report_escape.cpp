#include "report_escape.h"

#include "octet.h"

namespace velmora {
namespace {

void AppendUnicodeEscape(std::string& to, unsigned code) {
  to += "\\u";
  for (int shift = 12; shift >= 0; shift -= 4) to += kHexDigits[(code >> shift) & 0xF];
}

}  // namespace

void AppendHtmlEscaped(std::string& to, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '&':
        to += "&amp;";
        break;
      case '<':
        to += "&lt;";
        break;
      case '>':
        to += "&gt;";
        break;
      case '"':
        to += "&quot;";
        break;
      case '\'':
        to += "&#39;";
        break;
      default:
        to += c;
    }
  }
}

void AppendScriptJsonString(std::string& to, std::string_view text) {
  to += '"';
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto code = static_cast<unsigned char>(text[i]);
    if (code == '"' || code == '\\') {
      to += '\\';
      to += text[i];
    } else if (code == '\t') {
      to += "\\t";
    } else if (code == '\n') {
      to += "\\n";
    } else if (code < 0x20 || code == '<' || code == '>' || code == '&') {
      AppendUnicodeEscape(to, code);
    } else if (code == 0xE2 && i + 2 < text.size() && text[i + 1] == '\x80' &&
               (text[i + 2] == '\xA8' || text[i + 2] == '\xA9')) {
      // The line and paragraph separators (E2 80 A8, E2 80 A9 in UTF-8).
      AppendUnicodeEscape(to, text[i + 2] == '\xA8' ? 0x2028 : 0x2029);
      i += 2;
    } else {
      to += text[i];
    }
  }
  to += '"';
}

}  // namespace velmora
