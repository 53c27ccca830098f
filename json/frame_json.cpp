#include "frame_json.h"

#include <array>
#include <charconv>
#include <cstring>
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

// JSON put together in room claimed beforehand, so that a whole member or
// object costs one check of the writer's room instead of one a piece. The
// strings given are their JSON bodies, escaped where they need it.
class Room {
 public:
  explicit Room(char* at) : at_(at) {}
  void Put(std::string_view text) {
    std::memcpy(at_, text.data(), text.size());
    at_ += text.size();
  }
  void Put(char c) { *at_++ = c; }
  void Quoted(std::string_view body) {
    Put('"');
    Put(body);
    Put('"');
  }
  void QuotedOrNull(std::optional<std::string_view> body) {
    if (body) return Quoted(*body);
    Put("null");
  }
  void Number(std::optional<std::uint64_t> value) {
    if (!value) return Put("null");
    at_ = std::to_chars(at_, at_ + 20, *value).ptr;
  }
  void Hex(OctetSpan octets) {
    Put('"');
    for (const Octet octet : octets) Put(std::string_view(kOctetDigits[octet].data(), 2));
    Put('"');
  }
  char* End() const { return at_; }

 private:
  char* at_;
};

std::optional<std::uint64_t> Optional(std::optional<unsigned> value) {
  return value ? std::optional<std::uint64_t>(*value) : std::nullopt;
}

class JsonConsumer final : public TraceConsumer {
 public:
  JsonConsumer(OutputWriter& out, LinkMemory& link, DetailLevel detail,
               std::function<bool(OctetSpan, std::uint64_t)> select)
      : out_(out), link_(link), detail_(detail), select_(std::move(select)), decoder_(link, detail) {
    decoder_.Writer().SetFieldSink(&frame_);
  }

  void Consume(const TracePiece& piece) override {
    if (piece.dump != nullptr) return ConsumeDumpMessage(piece);
    if (!piece.isFrameLine) return;
    // The line handler copies the line first: the frame's text follows it.
    frame_.Begin(decoder_.Offset() + piece.text.size());
    const std::string_view text = decoder_.Translate(piece.text);
    if (select_ && !select_(piece.frame, piece.lineNumber)) return;
    const FrameLineFacts facts = ReadFrameLineFacts(piece.text);
    moment_.Assign(facts);
    Write({piece.lineNumber, moment_.View(), facts.direction, piece.frame, true, true}, text.substr(piece.text.size()));
  }

  // A debug dump's message: its own line, moment and direction, and a
  // layer-2 object only where the dump gave the whole frame.
  void ConsumeDumpMessage(const TracePiece& piece) {
    const DumpMessage& message = *piece.dump;
    frame_.Begin(decoder_.Offset());
    const std::string_view text = decoder_.TranslateDumpMessage(message);
    if (select_ && !select_(FrameForSelection(message, selectionRoom_), message.firstLine)) return;
    Write({message.firstLine, message.moment, message.direction, message.octets, message.wholeFrame,
           message.commandResponseKnown},
          text);
  }

  void Finish() override { decoder_.SaveLink(link_); }

 private:
  // Writes what `fill` puts in a Room of at most `most` characters: in place
  // in the writer, or, for more than its buffer holds, by way of a string.
  template <typename Fill>
  void Emit(std::size_t most, Fill fill) {
    if (char* at = out_.Claim(most)) {
      Room room(at);
      fill(room);
      out_.Commit(room.End());
      return;
    }
    overflow_.resize(most);
    Room room(overflow_.data());
    fill(room);
    out_.Put(std::string_view(overflow_.data(), static_cast<std::size_t>(room.End() - overflow_.data())));
  }

  // A string of the frame's text as a JSON body: itself, or escaped into
  // `slot` of the escaped texts, when the frame's text has a character to escape.
  std::string_view Body(std::string_view text, std::size_t slot) {
    if (plain_) return text;
    std::string& escaped = escaped_[slot];
    escaped.clear();
    AppendEscaped(escaped, text, kJsonUtf8Escapes);
    return escaped;
  }
  std::optional<std::string_view> OptionalBody(std::optional<std::string_view> text, std::size_t slot) {
    return text ? std::optional(Body(*text, slot)) : std::nullopt;
  }

  // What one JSON object tells besides the decoded text.
  struct Subject {
    std::uint64_t line;
    std::string_view moment;  // digits, "-", ":", ".", "T" and blanks: no escape needed
    FrameDirection direction;
    OctetSpan octets;
    bool wholeFrame;            // from the LAPD address on; else a Q.931 message alone
    bool commandResponseKnown;  // false: the frame's C/R bit is not in the dump
  };

  void Write(const Subject& subject, std::string_view decoded) {
    frame_.Split(decoded);
    // Decoded text is plain ASCII as a rule: checked once for the frame, its
    // parts then go out as they are.
    plain_ = PlainJsonLines(decoded);
    const OctetSpan frame = subject.wholeFrame ? subject.octets : OctetSpan{};
    const std::string_view direction = DirectionWord(subject.direction);
    const std::string_view kind = Body(frame_.layer2Kind, 0);
    const bool detailed = detail_ == DetailLevel::Full;
    const std::size_t most =
        200 + subject.moment.size() + 2 * subject.octets.size() + kind.size() + (detailed ? 200 : 0);
    Emit(most, [&](Room& room) {
      room.Put(R"({"line":)");
      room.Number(subject.line);
      room.Put(R"(,"time":)");
      room.QuotedOrNull(subject.moment.empty() ? std::nullopt : std::optional(subject.moment));
      room.Put(R"(,"direction":)");
      room.QuotedOrNull(direction.empty() ? std::nullopt : std::optional(direction));
      room.Put(R"(,"octets":)");
      room.Hex(subject.octets);
      room.Put(R"(,"layer2":)");
      if (subject.wholeFrame) {
        room.Put(R"({"kind":)");
        room.Quoted(kind);
        if (detailed) WriteLayer2Numbers(room, frame, subject.commandResponseKnown);
        room.Put('}');
      } else {
        room.Put("null");
      }
      if (detailed) WriteTeiManagement(room, frame);
      room.Put(R"(,"message":)");
    });
    const std::optional<Q931InFrame> q931 = FindQ931(frame);
    const bool decoded931 = q931 && (!q931->unnumbered || detailed);
    if (subject.wholeFrame && !decoded931) {
      Emit(8, [](Room& room) { room.Put("null}\n"); });
      return;
    }
    WriteMessage(subject.wholeFrame ? q931->message : subject.octets);
    Emit(8, [](Room& room) { room.Put("}\n"); });
  }

  // The address and control fields, at the detail level.
  static void WriteLayer2Numbers(Room& room, OctetSpan frame, bool commandResponseKnown) {
    const bool hasAddress = frame.size() >= 2;
    const LapdAddress address = hasAddress ? AddressOf(frame[0], frame[1]) : LapdAddress{};
    const LapdControlNumbers numbers = ControlNumbersOf(frame);
    room.Put(R"(,"sapi":)");
    room.Number(hasAddress ? std::optional<std::uint64_t>(address.sapi) : std::nullopt);
    room.Put(R"(,"cr":)");
    room.Number(hasAddress && commandResponseKnown ? std::optional<std::uint64_t>(address.commandResponse ? 1 : 0)
                                                   : std::nullopt);
    room.Put(R"(,"tei":)");
    room.Number(hasAddress ? std::optional<std::uint64_t>(address.tei) : std::nullopt);
    room.Put(R"(,"ns":)");
    room.Number(Optional(numbers.sendSequence));
    room.Put(R"(,"nr":)");
    room.Number(Optional(numbers.receiveSequence));
    room.Put(R"(,"pf":)");
    room.Number(Optional(numbers.pollFinal));
  }

  static void WriteTeiManagement(Room& room, OctetSpan frame) {
    room.Put(R"(,"tei_management":)");
    const std::optional<TeiManagementMessage> message = ReadTeiManagement(frame);
    if (!message) return room.Put("null");
    room.Put(R"({"type":)");
    const std::string_view name = TeiManagementName(message->type);
    room.QuotedOrNull(name.empty() ? std::nullopt : std::optional(name));
    room.Put(R"(,"ri":)");
    room.Number(message->referenceNumber);
    room.Put(R"(,"ai":)");
    room.Number(message->actionIndicator);
    room.Put('}');
  }

  // The message type's name as the message file prints it; null for a type
  // without one (at the detail level, its line shows the octet instead).
  std::optional<std::string_view> NameOf(const std::optional<Q931Header>& header) const {
    if (!header) {
      return frame_.hasMessageType && !frame_.messageName.empty() ? std::optional(frame_.messageName) : std::nullopt;
    }
    const MessageWalk* walk = FindMessageWalk(header->messageType);
    const std::string_view name = detail_ == DetailLevel::Full ? DetailMessageName(header->messageType)
                                  : walk != nullptr            ? walk->name
                                                               : std::string_view{};
    return name.empty() ? std::nullopt : std::optional(name);
  }

  void WriteMessage(OctetSpan message) {
    const std::optional<Q931Header> header = ReadQ931Header(message);
    const OctetSpan reference = header ? header->callReference : OctetSpan{};
    const std::optional<std::uint64_t> value = CallReferenceValue(reference);
    const std::optional<std::string_view> name = OptionalBody(NameOf(header), 0);
    Emit(200 + (name ? name->size() : 0), [&](Room& room) {
      room.Put(R"({"protocol_discriminator":)");
      room.Number(message[0]);
      room.Put(R"(,"call_ref":)");
      room.Number(value);
      room.Put(R"(,"call_ref_flag":)");
      room.Number(value ? std::optional<std::uint64_t>(CallReferenceFlag(reference)) : std::nullopt);
      room.Put(R"(,"call_ref_length":)");
      room.Number(message.size() > 1 ? std::optional<std::uint64_t>(message[1]) : std::nullopt);
      room.Put(R"(,"type":)");
      room.Number(header ? std::optional<std::uint64_t>(header->messageType) : std::nullopt);
      room.Put(R"(,"name":)");
      room.QuotedOrNull(name);
      room.Put(R"(,"elements":[)");
    });
    for (std::size_t e = 0; e < frame_.Elements().size(); ++e) WriteElement(frame_.Elements()[e], e == 0);
    Emit(2, [](Room& room) { room.Put("]}"); });
  }

  void WriteElement(const ElementPart& element, bool first) {
    const std::string_view name = Body(element.name, 0);
    Emit(100 + name.size() + 2 * element.octets.size(), [&](Room& room) {
      room.Put(first ? R"({"id":)" : R"(,{"id":)");
      room.Number(element.Identifier());
      room.Put(R"(,"codeset":)");
      room.Number(element.codeset);
      room.Put(R"(,"name":)");
      room.Quoted(name);
      room.Put(R"(,"octets":)");
      room.Hex(element.octets);
      room.Put(R"(,"fields":[)");
    });
    for (std::size_t f = 0; f < element.fields.size(); ++f) WriteField(element.fields[f], f == 0);
    Emit(2, [](Room& room) { room.Put("]}"); });
  }

  void WriteField(const FieldPart& field, bool first) {
    const std::optional<std::string_view> name =
        OptionalBody(field.name.empty() && !field.coded ? std::nullopt : std::optional(field.name), 0);
    const std::optional<std::string_view> bits =
        OptionalBody(field.coded ? std::optional(field.bits) : std::nullopt, 1);
    const std::optional<std::string_view> meaning =
        OptionalBody(field.coded ? std::optional(field.meaning) : std::nullopt, 2);
    const std::string_view text = Body(field.text, 3);
    const auto size = [](std::optional<std::string_view> body) { return body ? body->size() : 0; };
    Emit(80 + size(name) + size(bits) + size(meaning) + text.size(), [&](Room& room) {
      room.Put(first ? R"({"name":)" : R"(,{"name":)");
      room.QuotedOrNull(name);
      room.Put(R"(,"bits":)");
      room.QuotedOrNull(bits);
      room.Put(R"(,"meaning":)");
      room.QuotedOrNull(meaning);
      room.Put(R"(,"text":)");
      room.Quoted(text);
      room.Put(field.diagnostic ? R"(,"diagnostic":true})" : "}");
    });
  }

  OutputWriter& out_;
  LinkMemory& link_;
  DetailLevel detail_;
  std::function<bool(OctetSpan, std::uint64_t)> select_;
  StructuredFrame frame_;
  ScratchDecoder decoder_;
  MomentText moment_;
  std::array<std::string, 4> escaped_;  // a field's four strings, where they need escapes
  std::string overflow_;
  std::vector<Octet> selectionRoom_;
  bool plain_ = false;  // the frame's decoded text needs no escape
};

}  // namespace

std::unique_ptr<TraceConsumer> MakeJsonConsumer(OutputWriter& out, LinkMemory& link, DetailLevel detail,
                                                std::function<bool(OctetSpan, std::uint64_t)> select) {
  return std::make_unique<JsonConsumer>(out, link, detail, std::move(select));
}

}  // namespace velmora
