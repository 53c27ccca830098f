// Random traces to --to json and to the message file, from one run each,
// at the default level and at --detail full.
//
// Invariants: every line of the JSON is one JSON value, an object; there is
// one line a frame line; and every field's "text", read back, stands in the
// message file as a whole line behind two tabs (three for a diagnostic). At
// --detail full, every line of the trace is copied, in order, and what
// stands between two copies ends with a line end.
//
// Input: the trace's text.
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "decode_context.h"
#include "frame_json.h"
#include "fuzz_support.h"
#include "line_scanner.h"
#include "translation.h"

namespace {

using velmora::fuzz::Printable;
using velmora::fuzz::Require;

// A reader of any JSON value that keeps the strings of the members named
// "text" and notes whether a "diagnostic" member stands in their object.
class JsonReader : public velmora::fuzz::JsonCursor {
 public:
  struct Text {
    std::string value;
    bool diagnostic = false;
  };

  explicit JsonReader(std::string_view text) : JsonCursor(text) {}
  bool Document() { return Value(nullptr) && AtEnd(); }
  const std::vector<Text>& Texts() const { return texts_; }

 private:
  bool Value(Text* holder) {
    if (Word("null") || Word("true") || Word("false")) return true;
    if (Sees('"')) return String(nullptr);
    if (Take('[')) {
      if (Take(']')) return true;
      do {
        if (!Value(nullptr)) return false;
      } while (Take(','));
      return Take(']');
    }
    if (Take('{')) {
      Text object;
      bool hasText = false;
      if (!Take('}')) {
        do {
          std::string key;
          if (!String(&key) || !Take(':')) return false;
          if (key == "text") {
            hasText = true;
            if (!String(&object.value)) return false;
          } else {
            if (key == "diagnostic") object.diagnostic = true;
            if (!Value(nullptr)) return false;
          }
        } while (Take(','));
        if (!Take('}')) return false;
      }
      if (hasText) texts_.push_back(std::move(object));
      return true;
    }
    (void)holder;
    return Digits();
  }

  std::vector<Text> texts_;
};

// Every line of `json` is one object, one a frame line of `trace`, and each
// field's text stands in `message` as a whole line.
void CheckJson(std::string_view trace, const std::string& json, const std::string& message) {
  std::size_t frameLines = 0;
  for (const std::string_view piece : velmora::fuzz::SplitPieces(trace)) frameLines += velmora::IsFrameLine(piece);
  std::size_t objects = 0;
  for (std::size_t start = 0; start < json.size();) {
    const std::size_t end = json.find('\n', start);
    Require(end != std::string::npos, "every JSON line ends with a line end");
    const std::string_view line(json.data() + start, end - start);
    JsonReader reader(line);
    Require(reader.Document() && line.starts_with('{'), "every JSON line is one object",
            [&] { return Printable(line); });
    for (const JsonReader::Text& text : reader.Texts()) {
      const std::string wanted = (text.diagnostic ? "\n\t\t\t" : "\n\t\t") + text.value + "\n";
      Require(message.find(wanted) != std::string::npos, "a field's text is a line of the message file",
              [&] { return Printable(wanted); });
    }
    ++objects;
    start = end + 1;
  }
  Require(objects == frameLines, "one JSON object a frame line");
}

std::string JsonOf(std::string_view trace, velmora::DetailLevel detail) {
  std::string json;
  velmora::StringSink sink(json);
  velmora::LinkMemory link;
  velmora::TranslationOptions options;
  options.makeConsumer = [detail](velmora::OutputWriter& out, velmora::LinkMemory& memory) {
    return velmora::MakeJsonConsumer(out, memory, detail);
  };
  velmora::TranslateTraceText(trace, sink, link, options);
  return json;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view trace(reinterpret_cast<const char*>(data), size);
  std::string message;
  {
    velmora::StringSink sink(message);
    velmora::LinkMemory link;
    velmora::TranslateTraceText(trace, sink, link);
  }
  CheckJson(trace, JsonOf(trace, velmora::DetailLevel::Description), message);
  {
    std::string detailed;
    velmora::StringSink sink(detailed);
    velmora::LinkMemory link;
    velmora::TranslationOptions options;
    options.detail = velmora::DetailLevel::Full;
    velmora::TranslateTraceText(trace, sink, link, options);
    // The run's output, piece by piece: each piece's copy, then its decoded
    // lines, all closed.
    std::string expected;
    velmora::LinkSetup memory = velmora::LinkSetup::NotPending;
    for (const std::string_view piece : velmora::fuzz::SplitPieces(trace)) {
      const std::string part = velmora::fuzz::Capture([&](velmora::OutputWriter& out) {
        velmora::DecodeContext context{out, memory};
        context.detail = velmora::DetailLevel::Full;
        velmora::TranslateTraceLine(context, piece);
        memory = context.linkSetup;
      });
      Require(part.starts_with(piece), "at full detail a piece's output begins with its copy",
              [&] { return Printable(piece); });
      Require(part.size() == piece.size() || part.back() == '\n', "at full detail the decoded lines are closed",
              [&] { return Printable(part); });
      expected += part;
    }
    Require(detailed == expected, "at full detail the run writes the pieces' outputs in order");
    CheckJson(trace, JsonOf(trace, velmora::DetailLevel::Full), detailed);
  }
  return 0;
}
