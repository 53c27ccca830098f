#include "frame_json.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "escaped_text.h"
#include "frame_line_facts.h"
#include "lapd.h"
#include "q931_message.h"
#include "scratch_decoder.h"
#include "structured_frame.h"

namespace velmora {
namespace {

// An octet's two lower-case hexadecimal digits.
constexpr std::array<std::array<char, 2>, 256> kOctetDigits = [] {
  std::array<std::array<char, 2>, 256> digits{};
  for (unsigned octet = 0; octet < 256; ++octet) digits[octet] = {kHexDigits[octet >> 4], kHexDigits[octet & 0xF]};
  return digits;
}();

// Members written straight into the output, each with what stands before
// it: its "{" or "," and its key, given with its quotes and colon.
class JsonObject {
 public:
  JsonObject(OutputWriter& out, std::string& scratch) : out_(out), scratch_(scratch) {}
  void Key(std::string_view quotedKey) {
    out_.Put(first_ ? '{' : ',');
    first_ = false;
    out_.Put(quotedKey);
  }
  void String(std::string_view quotedKey, std::string_view value) {
    Key(quotedKey);
    PutString(value);
  }
  void OptionalString(std::string_view quotedKey, std::optional<std::string_view> value) {
    if (value) return String(quotedKey, *value);
    Key(quotedKey);
    out_.Put("null");
  }
  void Number(std::string_view quotedKey, std::optional<std::uint64_t> value) {
    Key(quotedKey);
    if (value) {
      out_.Decimal(static_cast<std::int64_t>(*value));
    } else {
      out_.Put("null");
    }
  }
  void Hex(std::string_view quotedKey, OctetSpan octets) {
    Key(quotedKey);
    out_.Put('"');
    for (const Octet octet : octets) out_.Put(std::string_view(kOctetDigits[octet].data(), 2));
    out_.Put('"');
  }
  void Null(std::string_view quotedKey) {
    Key(quotedKey);
    out_.Put("null");
  }
  void True(std::string_view quotedKey) {
    Key(quotedKey);
    out_.Put("true");
  }
  void End() { out_.Put(first_ ? "{}" : "}"); }

 private:
  // Decoded text is plain ASCII as a rule: it goes out as it is, and only
  // text with a character to escape takes the way through the escaper.
  void PutString(std::string_view value) {
    out_.Put('"');
    if (PlainLength(value) == value.size()) {
      out_.Put(value);
    } else {
      scratch_.clear();
      AppendEscaped(scratch_, value, kJsonUtf8Escapes);
      out_.Put(scratch_);
    }
    out_.Put('"');
  }

  OutputWriter& out_;
  std::string& scratch_;
  bool first_ = true;
};

class JsonConsumer final : public TraceConsumer {
 public:
  JsonConsumer(OutputWriter& out, LinkMemory& link, std::function<bool(OctetSpan, std::uint64_t)> select)
      : out_(out), link_(link), select_(std::move(select)), decoder_(link) {
    decoder_.Writer().SetFieldSink(&frame_);
  }

  void Consume(const TracePiece& piece) override {
    if (!piece.isFrameLine) return;
    // The line handler copies the line first: the frame's text follows it.
    frame_.Begin(decoder_.Offset() + piece.text.size());
    const std::string_view text = decoder_.Translate(piece.text);
    if (select_ && !select_(piece.frame, piece.lineNumber)) return;
    frame_.Split(text.substr(piece.text.size()));
    Write(piece);
    out_.Put('\n');
  }

  void Finish() override { decoder_.SaveLink(link_); }

 private:
  void Write(const TracePiece& piece) {
    JsonObject line(out_, scratch_);
    line.Number(R"("line":)", piece.lineNumber);
    const FrameLineFacts facts = ReadFrameLineFacts(piece.text);
    if (facts.time) {
      moment_.assign(facts.dateText);
      if (!moment_.empty()) moment_ += ' ';
      moment_ += facts.timeText;
      line.String(R"("time":)", moment_);
    } else {
      line.OptionalString(R"("time":)", facts.date ? std::optional(facts.dateText) : std::nullopt);
    }
    const std::string_view direction = DirectionWord(facts.direction);
    line.OptionalString(R"("direction":)", direction.empty() ? std::nullopt : std::optional(direction));
    line.Hex(R"("octets":)", piece.frame);
    line.Key(R"("layer2":)");
    JsonObject layer2(out_, scratch_);
    layer2.String(R"("kind":)", frame_.layer2Kind);
    layer2.End();
    if (!CarriesQ931(piece.frame)) {
      line.Null(R"("message":)");
    } else {
      line.Key(R"("message":)");
      WriteMessage(piece.frame.subspan(4));
    }
    line.End();
  }

  void WriteMessage(OctetSpan message) {
    JsonObject json(out_, scratch_);
    json.Number(R"("protocol_discriminator":)", message[0]);
    const std::optional<Q931Header> header = ReadQ931Header(message);
    const OctetSpan reference = header ? header->callReference : OctetSpan{};
    const std::optional<std::uint64_t> value = CallReferenceValue(reference);
    const std::optional<std::uint64_t> flag =
        value ? std::optional<std::uint64_t>(CallReferenceFlag(reference)) : std::nullopt;
    json.Number(R"("call_ref":)", value);
    json.Number(R"("call_ref_flag":)", flag);
    json.Number(R"("call_ref_length":)", message.size() > 1 ? std::optional<std::uint64_t>(message[1]) : std::nullopt);
    json.Number(R"("type":)", header ? std::optional<std::uint64_t>(header->messageType) : std::nullopt);
    json.OptionalString(R"("name":)", frame_.hasMessageType && !frame_.messageName.empty()
                                          ? std::optional(frame_.messageName)
                                          : std::nullopt);
    json.Key(R"("elements":)");
    out_.Put('[');
    for (std::size_t e = 0; e < frame_.Elements().size(); ++e) {
      if (e > 0) out_.Put(',');
      WriteElement(frame_.Elements()[e]);
    }
    out_.Put(']');
    json.End();
  }

  void WriteElement(const ElementPart& element) {
    JsonObject json(out_, scratch_);
    json.Number(R"("id":)", element.Identifier());
    json.Number(R"("codeset":)", element.codeset);
    json.String(R"("name":)", element.name);
    json.Hex(R"("octets":)", element.octets);
    json.Key(R"("fields":)");
    out_.Put('[');
    for (std::size_t f = 0; f < element.fields.size(); ++f) {
      if (f > 0) out_.Put(',');
      const FieldPart& field = element.fields[f];
      JsonObject part(out_, scratch_);
      part.OptionalString(R"("name":)", field.name.empty() && !field.coded ? std::nullopt : std::optional(field.name));
      part.OptionalString(R"("bits":)", field.coded ? std::optional(field.bits) : std::nullopt);
      part.OptionalString(R"("meaning":)", field.coded ? std::optional(field.meaning) : std::nullopt);
      part.String(R"("text":)", field.text);
      if (field.diagnostic) part.True(R"("diagnostic":)");
      part.End();
    }
    out_.Put(']');
    json.End();
  }

  OutputWriter& out_;
  LinkMemory& link_;
  std::function<bool(OctetSpan, std::uint64_t)> select_;
  StructuredFrame frame_;
  ScratchDecoder decoder_;
  std::string scratch_;
  std::string moment_;
};

}  // namespace

std::unique_ptr<TraceConsumer> MakeJsonConsumer(OutputWriter& out, LinkMemory& link,
                                                std::function<bool(OctetSpan, std::uint64_t)> select) {
  return std::make_unique<JsonConsumer>(out, link, std::move(select));
}

}  // namespace velmora
