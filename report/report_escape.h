#pragma once
// Text from the trace (a file name, digits, decoded lines) written into the
// report's HTML, escaped for where it stands.
#include <string>
#include <string_view>

namespace velmora {

// For an HTML text node or a quoted attribute value: & < > " and ' as
// character references.
void AppendHtmlEscaped(std::string& to, std::string_view text);

// A JSON string, its quotes included, that is safe inside a <script>
// element: the quote, the backslash and control characters escaped as JSON
// has them; < > & as \u003c \u003e \u0026, so that neither "</script" nor
// "<!--" can stand in the element; U+2028 and U+2029 as \u2028 \u2029.
void AppendScriptJsonString(std::string& to, std::string_view text);

}  // namespace velmora
