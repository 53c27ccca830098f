// The one escaper of every output: which characters each form escapes, and
// UTF-8 kept where it is well formed and escaped byte by byte where not.
#include <gtest/gtest.h>

#include <string>

#include "escaped_text.h"

namespace velmora {
namespace {

std::string Escaped(std::string_view text, const TextEscapes& escapes) {
  std::string to = "[";
  AppendEscaped(to, text, escapes);
  return to + "]";
}

TEST(EscapedText, EachFormEscapesWhatWouldBreakIt) {
  const std::string text = "a\"b\\c\td\ne\x01\x7f<&>";
  EXPECT_EQ(Escaped(text, kControlEscapes), "[a\"b\\c\\u0009d\\u000ae\\u0001\\u007f<&>]");
  EXPECT_EQ(Escaped(text, kJsonEscapes), "[a\\\"b\\\\c\\u0009d\\u000ae\\u0001\\u007f<&>]");
  EXPECT_EQ(Escaped(text, kScriptJsonEscapes), "[a\\\"b\\\\c\\td\\ne\\u0001\x7f\\u003c\\u0026\\u003e]");
  EXPECT_EQ(Escaped("</script>\xe2\x80\xa8\xe2\x80\xa9", kScriptJsonEscapes), "[\\u003c/script\\u003e\\u2028\\u2029]");
  EXPECT_EQ(Escaped("", kJsonEscapes), "[]");
}

TEST(EscapedText, InvalidUtf8BytesAreEscapedOneByOne) {
  struct Row {
    std::string text, json;
  };
  const Row rows[] = {
      {"caf\xc3\xa9 \xe6\x97\xa5 \xf0\x9f\x98\x80", "caf\xc3\xa9 \xe6\x97\xa5 \xf0\x9f\x98\x80"},  // kept
      {"\x80", "\\u0080"},                                   // a lone continuation
      {"\xc0\x80", "\\u00c0\\u0080"},                        // overlong
      {"\xe0\x80\x80", "\\u00e0\\u0080\\u0080"},             // overlong
      {"\xed\xa0\x80", "\\u00ed\\u00a0\\u0080"},             // a surrogate
      {"\xf4\x90\x80\x80", "\\u00f4\\u0090\\u0080\\u0080"},  // above U+10FFFF
      {"\xe2\x82", "\\u00e2\\u0082"},                        // cut short
      {"\xc3\xa9\xff", "\xc3\xa9\\u00ff"},
  };
  for (const Row& row : rows) EXPECT_EQ(Escaped(row.text, kJsonUtf8Escapes), "[" + row.json + "]") << row.json;
  // Without the UTF-8 check, bytes above 0x7F pass as they are.
  EXPECT_EQ(Escaped("\x80", kJsonEscapes), "[\x80]");
}

}  // namespace
}  // namespace velmora
