#include "report_escape.h"

#include "escaped_text.h"

namespace velmora {

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
  AppendEscaped(to, text, kScriptJsonEscapes);
  to += '"';
}

}  // namespace velmora
