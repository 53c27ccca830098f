// The call report's escaping, and a report of a trace whose numbers,
// display and keypad texts and file name are markup. What the page shows is
// checked in a browser (tests/browser/report_browser.py).
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "call_report.h"
#include "report_escape.h"
#include "trace_files.h"
#include "translation.h"

namespace velmora::testing {
namespace {

TEST(ReportEscaping, HtmlTextAndScriptData) {
  std::string html;
  AppendHtmlEscaped(html, "a<b>&\"'c");
  EXPECT_EQ(html, "a&lt;b&gt;&amp;&quot;&#39;c");
  const struct {
    std::string_view text, json;
  } cases[] = {
      {"</script><!--", R"("\u003c/script\u003e\u003c!--")"},
      {"a\"b\\c\td\ne\x01\x1f", R"("a\"b\\c\td\ne\u0001\u001f")"},
      {"&amp;", R"("\u0026amp;")"},
      // U+2028 and U+2029 end a line in a script; U+2027 and a cut sequence do not.
      {"\xE2\x80\xA8\xE2\x80\xA9\xE2\x80\xA7\xE2\x80", "\"\\u2028\\u2029\xE2\x80\xA7\xE2\x80\""},
  };
  for (const auto& [text, json] : cases) {
    std::string written;
    AppendScriptJsonString(written, text);
    EXPECT_EQ(written, json);
  }
}

std::size_t Occurrences(std::string_view text, std::string_view part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string_view::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

class Report : public ScratchDirectoryTest {};

TEST_F(Report, TraceTextsStandInThePageOnlyEscaped) {
  const std::string trace = ReadAll(std::filesystem::path(VELMORA_TEST_DATA) / "report" / "escapes.trace.txt");
  const std::string name = "<i>&'.txt";
  Write(name, trace + FrameLine("0x00 0x81 0x7f"));  // a SABME at the end
  LinkMemory link;
  TranslationOptions options;
  options.makeConsumer = CallReport({Path(name), std::nullopt});
  EXPECT_EQ(TranslateTraceFile(Path(name), Path("report.html"), link, options), TranslationOutcome::TranslationDone);
  EXPECT_TRUE(link.setupPending);  // carried on as by the message file

  const std::string page = Read("report.html");
  // One data block and the page's script: no text of the trace opens or ends one.
  EXPECT_EQ(Occurrences(page, "<script"), 2U);
  EXPECT_EQ(Occurrences(page, "</script"), 2U);
  EXPECT_EQ(Occurrences(page, "&lt;i&gt;&amp;&#39;.txt"), 2U);  // the title and the heading
  EXPECT_EQ(page.find("<i>"), std::string::npos);
  EXPECT_NE(page.find(R"("\u003c/script\u003e\u003cb id=\"injected\"\u003e\u0026\"'")"), std::string::npos);
  // The input's size as read, when the run is not told it.
  EXPECT_NE(page.find("{\"size\":" + std::to_string(trace.size() + 90) + ","), std::string::npos);
}

TEST_F(Report, MessageTypesWithoutANameStandAsTheirOctet) {
  // One call: SETUP, the unnamed types 0x06 and 0x62, RELEASE COMPLETE.
  Write("unnamed.txt", FrameLine("0x00 0x81 0x00 0x00 0x08 0x01 0x05 0x05") +
                           FrameLine("0x00 0x81 0x02 0x00 0x08 0x01 0x05 0x06") +
                           FrameLine("0x00 0x81 0x04 0x00 0x08 0x01 0x05 0x62") +
                           FrameLine("0x00 0x81 0x06 0x00 0x08 0x01 0x05 0x5a"));
  LinkMemory link;
  TranslationOptions options;
  options.makeConsumer = CallReport({"unnamed.txt", std::nullopt});
  EXPECT_EQ(TranslateTraceFile(Path("unnamed.txt"), Path("report.html"), link, options),
            TranslationOutcome::TranslationDone);
  const std::string page = Read("report.html");
  EXPECT_NE(page.find("\"SETUP\""), std::string::npos);
  EXPECT_NE(page.find("\"0x6\""), std::string::npos);
  EXPECT_NE(page.find("\"0x62\""), std::string::npos);
  EXPECT_NE(page.find("\"RELEASE COMPLETE\""), std::string::npos);
}

TEST_F(Report, ASeenMessageKeepsItsFrameKindsText) {
  // The same SETUP broadcast in a UI frame (whose text at this level is the
  // layer-2 line alone), then in I frames of other sequence numbers: the
  // I frames' text is decoded, the UI frame's not taken for it.
  Write("kinds.txt", FrameLine("0x02 0xff 0x03 0x08 0x01 0x05 0x05 0xa1") +
                         FrameLine("0x00 0x81 0x02 0x00 0x08 0x01 0x85 0x07") +
                         FrameLine("0x02 0x81 0x04 0x02 0x08 0x01 0x05 0x05 0xa1") +
                         FrameLine("0x02 0x81 0x06 0x04 0x08 0x01 0x05 0x05 0xa1"));
  LinkMemory link;
  TranslationOptions options;
  options.makeConsumer = CallReport({"kinds.txt", std::nullopt});
  EXPECT_EQ(TranslateTraceFile(Path("kinds.txt"), Path("report.html"), link, options),
            TranslationOutcome::TranslationDone);
  const std::string page = Read("report.html");
  EXPECT_EQ(Occurrences(page, "\"ISDN Layer 2: UI(unnumbered information)\""), 1U);
  EXPECT_EQ(Occurrences(page, "\"Message type:SETUP\""), 1U);
  EXPECT_EQ(Occurrences(page, "\"\\tInformation element:Sending complete\""), 1U) << page;
}

}  // namespace
}  // namespace velmora::testing
