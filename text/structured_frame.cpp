#include "structured_frame.h"

#include "codesets.h"

namespace velmora {
namespace {

constexpr std::string_view kLayer2Prefix = "ISDN Layer 2: ";
constexpr std::string_view kMessageTypePrefix = "Message type:";
constexpr std::string_view kHeadingPrefix = "\tInformation element:";

// The line at `at`, without its line end; `at` moves behind it.
std::string_view NextLine(std::string_view text, std::size_t& at) {
  const std::size_t end = text.find('\n', at);
  const std::string_view line = text.substr(at, end == std::string_view::npos ? std::string_view::npos : end - at);
  at = end == std::string_view::npos ? text.size() : end + 1;
  return line;
}

FieldPart PartsOf(std::string_view line) {
  FieldPart part;
  part.diagnostic = line.starts_with("\t\t\t");
  std::size_t tabs = 0;
  while (tabs < line.size() && line[tabs] == '\t') ++tabs;
  line.remove_prefix(tabs);
  part.text = line;
  const std::size_t equals = line.find('=');
  if (equals == std::string_view::npos) return part;
  part.name = line.substr(0, equals);
  // "=bits  meaning": a run of 0 and 1 right behind the "=", then two blanks.
  std::size_t end = equals + 1;
  while (end < line.size() && (line[end] == '0' || line[end] == '1')) ++end;
  if (end > equals + 1 && line.substr(end).starts_with("  ")) {
    part.bits = line.substr(equals + 1, end - equals - 1);
    part.meaning = line.substr(end + 2);
    part.coded = true;
  }
  return part;
}

void AssignCodesets(std::span<ElementPart> elements) {
  CodesetShifts shifts;
  for (ElementPart& element : elements) element.codeset = shifts.Next(element.Identifier());
}

}  // namespace

void StructuredFrame::Begin(std::uint64_t textOffset) {
  base_ = textOffset;
  starts_.clear();
  count_ = 0;
  layer2Kind = {};
  hasMessageType = false;
  messageName = {};
}

void StructuredFrame::Element(std::uint64_t textOffset, OctetSpan octets) {
  starts_.push_back(textOffset - base_);
  if (count_ == elements_.size()) elements_.emplace_back();
  ElementPart& element = elements_[count_++];
  element.storage.assign(octets.begin(), octets.end());
  element.octets = element.storage;
  element.codeset = 0;
  element.name = {};
  element.fields.clear();
}

void StructuredFrame::Split(std::string_view text) {
  // The frame's own lines, before its first element.
  const std::size_t headEnd = starts_.empty() ? text.size() : static_cast<std::size_t>(starts_.front());
  for (std::size_t at = 0; at < headEnd;) {
    const std::string_view line = NextLine(text.substr(0, headEnd), at);
    if (line.starts_with(kLayer2Prefix)) layer2Kind = line.substr(kLayer2Prefix.size());
    if (line.starts_with(kMessageTypePrefix)) {
      hasMessageType = true;
      messageName = line.substr(kMessageTypePrefix.size());
    }
  }
  const std::span<ElementPart> elements(elements_.data(), count_);
  for (std::size_t e = 0; e < elements.size(); ++e) {
    const std::size_t begin = static_cast<std::size_t>(starts_[e]);
    const std::size_t end = e + 1 < elements.size() ? static_cast<std::size_t>(starts_[e + 1]) : text.size();
    const std::string_view lines = text.substr(begin, end - begin);
    std::size_t at = 0;
    const std::string_view heading = NextLine(lines, at);
    elements[e].name = heading.starts_with(kHeadingPrefix) ? heading.substr(kHeadingPrefix.size()) : heading;
    while (at < lines.size()) elements[e].fields.push_back(PartsOf(NextLine(lines, at)));
  }
  AssignCodesets(elements);
}

}  // namespace velmora
