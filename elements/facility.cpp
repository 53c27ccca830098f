// Facility (0x1C, Q.932): the protocol profile, then remote-operation (ROSE)
// components in ASN.1 basic encoding: Invoke, Return result, Return error
// and Reject with their identifiers, the operation or error value by name,
// and the argument or result as tag/length/value lines. Everything is read
// inside the element's octets; an encoding that runs past them is shown as
// malformed, with the octets left.
#include <cstdint>
#include <optional>

#include "element_registry.h"
#include "field_text.h"

namespace velmora {
namespace {

constexpr ValueText kProtocolProfiles[] = {
    {0b10001, "Remote Operations Protocol"},
    {0b10010, "CMIP"},
    {0b10011, "ACSE"},
    {0b11111, "Networking extensions"},
};
constexpr CodedField kProtocolProfileField = Coded<"Protocol profile", 5, 1, kProtocolProfiles>;

constexpr ValueText kComponentTypes[] = {
    {0xA1, "Invoke"},
    {0xA2, "Return result"},
    {0xA3, "Return error"},
    {0xA4, "Reject"},
    {0xAA, "Network facility extension"},
    {0x8B, "Interpretation"},
};
constexpr CodedField kComponentField = Coded<"Component", 8, 1, kComponentTypes>;

// Operation values (local, ETSI supplementary services).
constexpr ValueText kOperations[] = {
    {3, "MCID request (malicious call identification)"},
    {4, "Begin three-party conference"},
    {5, "End three-party conference"},
    {7, "Activation diversion"},
    {8, "Deactivation diversion"},
    {9, "Activation status notification diversion"},
    {10, "Deactivation status notification diversion"},
    {11, "Interrogation diversion"},
    {12, "Diversion information"},
    {13, "Call deflection"},
    {14, "Call rerouteing"},
    {15, "Diverting leg information 2"},
    {17, "Interrogate served user numbers"},
    {18, "Diverting leg information 1"},
    {19, "Diverting leg information 3"},
    {30, "Charging request (advice of charge)"},
    {31, "AOC-S currency (advice of charge at call set-up)"},
    {32, "AOC-S special arrangement (advice of charge at call set-up)"},
    {33, "AOC-D currency (advice of charge during the call)"},
    {34, "AOC-D charging unit (advice of charge during the call)"},
    {35, "AOC-E currency (advice of charge at the end of the call)"},
    {36, "AOC-E charging unit (advice of charge at the end of the call)"},
    {40, "CCBS request (completion of calls to busy subscriber)"},
    {41, "CCBS deactivate"},
    {42, "CCBS interrogate"},
    {43, "CCBS erase"},
    {44, "CCBS remote user free"},
    {45, "CCBS call"},
    {46, "CCBS status request"},
    {47, "CCBS B free"},
    {48, "Erase call linkage identifier"},
    {49, "CCBS stop alerting"},
};

// Error values (local, ETSI general errors and those of diversion and AOC).
constexpr ValueText kErrors[] = {
    {0, "Not subscribed"},
    {3, "Not available"},
    {4, "Not implemented"},
    {6, "Invalid served user number"},
    {7, "Invalid call state"},
    {8, "Basic service not provided"},
    {9, "Not incoming call"},
    {10, "Supplementary service interaction not allowed"},
    {11, "Resource unavailable"},
    {12, "Invalid diverted-to number"},
    {14, "Special service number"},
    {15, "Diversion to served user number"},
    {23, "Incoming call accepted"},
    {24, "Number of diversions exceeded"},
    {26, "No charging information available"},
    {46, "Not activated"},
    {48, "Request already accepted"},
};

// Reject problems, by the problem's tag [0] to [3].
constexpr ValueText kProblemKinds[] = {
    {0x80, "General problem"},
    {0x81, "Invoke problem"},
    {0x82, "Return result problem"},
    {0x83, "Return error problem"},
};
constexpr ValueText kGeneralProblems[] = {
    {0, "Unrecognized component"},
    {1, "Mistyped component"},
    {2, "Badly structured component"},
};
constexpr ValueText kInvokeProblems[] = {
    {0, "Duplicate invocation"},       {1, "Unrecognized operation"},     {2, "Mistyped argument"},
    {3, "Resource limitation"},        {4, "Initiator releasing"},        {5, "Unrecognized linked identifier"},
    {6, "Linked response unexpected"}, {7, "Unexpected child operation"},
};
constexpr ValueText kReturnResultProblems[] = {
    {0, "Unrecognized invocation"},
    {1, "Result response unexpected"},
    {2, "Mistyped result"},
};
constexpr ValueText kReturnErrorProblems[] = {
    {0, "Unrecognized invocation"}, {1, "Error response unexpected"}, {2, "Unrecognized error"},
    {3, "Unexpected error"},        {4, "Mistyped parameter"},
};
constexpr ValueTable kProblemsByKind[] = {kGeneralProblems, kInvokeProblems, kReturnResultProblems,
                                          kReturnErrorProblems};

// The multiplier of an AOC currency amount.
constexpr ValueText kMultipliers[] = {
    {0, "one thousandth"}, {1, "one hundredth"}, {2, "one tenth"}, {3, "one"}, {4, "ten"},
    {5, "hundred"},        {6, "thousand"},
};

constexpr ValueText kUniversalTypes[] = {
    {0x01, "BOOLEAN"},           {0x02, "INTEGER"},    {0x04, "OCTET STRING"},  {0x05, "NULL"},
    {0x06, "OBJECT IDENTIFIER"}, {0x0A, "ENUMERATED"}, {0x12, "NumericString"}, {0x16, "IA5String"},
    {0x30, "SEQUENCE"},          {0x31, "SET"},
};

// One BER item: its identifier octet, and its contents inside the octets it
// was read from. Tags of more than one octet are not used by these
// operations and are shown as they come.
struct BerItem {
  Octet tag = 0;
  OctetSpan contents;
  std::size_t size = 0;  // identifier, length octets and contents
  bool Constructed() const { return (tag & 0x20) != 0; }
};

// The item at the start of `octets`; nothing when its length octets or its
// contents run past them (or the length form is one this walk cannot
// follow: indefinite, or more than four length octets).
std::optional<BerItem> ReadItem(OctetSpan octets) {
  if (octets.size() < 2) return std::nullopt;
  BerItem item;
  item.tag = octets[0];
  std::size_t header = 2;
  std::size_t length = octets[1];
  if (length > 0x80) {
    const std::size_t count = length & 0x7F;
    if (count > 4 || octets.size() < 2 + count) return std::nullopt;
    length = 0;
    for (std::size_t i = 0; i < count; ++i) length = length << 8 | octets[2 + i];
    header += count;
  } else if (length == 0x80) {
    return std::nullopt;
  }
  if (length > octets.size() - header) return std::nullopt;
  item.contents = octets.subspan(header, length);
  item.size = header + length;
  return item;
}

// An INTEGER's value (two's complement) when it fits in 64 bits.
std::optional<std::int64_t> IntegerOf(OctetSpan contents) {
  if (contents.empty() || contents.size() > 8) return std::nullopt;
  std::uint64_t value = (contents[0] & 0x80) != 0 ? ~std::uint64_t{0} : 0;
  for (const Octet octet : contents) value = value << 8 | octet;
  return static_cast<std::int64_t>(value);
}

bool Printable(OctetSpan contents) {
  if (contents.empty()) return false;
  for (const Octet octet : contents)
    if (octet < 0x20 || octet > 0x7E) return false;
  return true;
}

// "\t\t<name>=<decimal>  <meaning>\n", the meaning where the table names the value.
void PrintNamedNumber(OutputWriter& out, std::string_view name, std::int64_t value, ValueTable meanings) {
  PrintFieldName(out, name);
  out.Decimal(value);
  const ValueText* row = value >= 0 && value <= 0xFFFF ? FindRow(meanings, static_cast<std::uint32_t>(value)) : nullptr;
  if (row != nullptr) {
    out.Put("  ");
    out.Put(row->text);
  }
  out.Put('\n');
}

// An identifier or a value that should be an INTEGER: its number, or its
// octets when it is not one.
void PrintValue(OutputWriter& out, std::string_view name, const BerItem& item, ValueTable meanings = {}) {
  const std::optional<std::int64_t> number = IntegerOf(item.contents);
  if (number && (item.tag & 0x1F) != 0x06) return PrintNamedNumber(out, name, *number, meanings);
  PrintOctetString(out, name, item.contents);
}

void PrintMalformed(OutputWriter& out, OctetSpan left) { PrintOctetString(out, "Malformed encoding, octets", left); }

// Each item of `octets` as a tag/length/value line, constructed ones
// followed by their items one level deeper (". " a level below the first).
void PrintItems(OutputWriter& out, OctetSpan octets, unsigned depth) {
  while (!octets.empty()) {
    const std::optional<BerItem> item = ReadItem(octets);
    if (!item) return PrintMalformed(out, octets);
    out.Put("\t\t");
    for (unsigned level = 1; level < depth; ++level) out.Put(". ");
    out.Put("Tag=0x");
    out.Put(kHexDigits[item->tag >> 4]);
    out.Put(kHexDigits[item->tag & 0xF]);
    out.Put("  ");
    const ValueText* universal = (item->tag & 0xC0) == 0 ? FindRow(kUniversalTypes, item->tag) : nullptr;
    if (universal != nullptr) {
      out.Put(universal->text);
    } else {
      out.Put((item->tag & 0xC0) == 0x80 ? "[" : (item->tag & 0xC0) == 0x40 ? "[APPLICATION " : "[PRIVATE ");
      out.Decimal(item->tag & 0x1F);
      out.Put(']');
    }
    out.Put(", length ");
    out.Decimal(static_cast<std::int64_t>(item->contents.size()));
    if (!item->Constructed()) {
      if (!item->contents.empty()) {
        out.Put(",");
        for (const Octet octet : item->contents) out.SpaceHex(octet);
      }
      const bool numeric = item->tag == 0x02 || item->tag == 0x0A || (item->tag & 0xC0) == 0x80;
      if (const std::optional<std::int64_t> number = IntegerOf(item->contents); numeric && number) {
        out.Put(" (");
        out.Decimal(*number);
        out.Put(')');
      }
      if (Printable(item->contents)) {
        out.Put(" \"");
        for (const Octet octet : item->contents) out.Put(static_cast<char>(octet));
        out.Put('"');
      }
    }
    out.Put('\n');
    if (item->Constructed()) PrintItems(out, item->contents, depth + 1);
    octets = octets.subspan(item->size);
  }
}

// The contents reached from `octets` by the first item of each tag of
// `path` in turn; nothing when one is missing.
std::optional<OctetSpan> Follow(OctetSpan octets, std::initializer_list<Octet> path) {
  for (const Octet tag : path) {
    std::optional<OctetSpan> found;
    while (!octets.empty() && !found) {
      const std::optional<BerItem> item = ReadItem(octets);
      if (!item) return std::nullopt;
      if (item->tag == tag) found = item->contents;
      octets = octets.subspan(item->size);
    }
    if (!found) return std::nullopt;
    octets = *found;
  }
  return octets;
}

// The charge of an advice of charge argument, in words: the recorded units
// of a charging unit operation, the currency and amount of a currency one.
void PrintAdviceOfCharge(OutputWriter& out, std::int64_t operation, OctetSpan argument) {
  const std::optional<BerItem> top = ReadItem(argument);
  if (!top) return;
  const bool notAvailable = top->tag == 0x05;
  if (notAvailable || (top->tag == 0x81 && top->contents.empty())) {
    PrintFieldName(out, "Charge");
    out.Put(notAvailable ? "not available\n" : "free of charge\n");
    return;
  }
  if (operation == 34 || operation == 36) {
    // specificChargingUnits, in AOC-E inside the charging unit information.
    const std::optional<OctetSpan> list =
        operation == 34 ? Follow(argument, {0x30, 0xA1}) : Follow(argument, {0x30, 0x30, 0xA1});
    if (!list) return;
    for (OctetSpan units = *list; !units.empty();) {
      const std::optional<BerItem> recorded = ReadItem(units);
      if (!recorded) return;
      if (const std::optional<OctetSpan> number = Follow(recorded->contents, {0x02})) {
        if (const std::optional<std::int64_t> value = IntegerOf(*number))
          PrintNamedNumber(out, "Recorded units", *value, {});
      } else if (Follow(recorded->contents, {0x05})) {
        PrintFieldName(out, "Recorded units");
        out.Put("not available\n");
      }
      units = units.subspan(recorded->size);
    }
    return;
  }
  // A recorded currency: the currency's name [1] and the amount [2].
  const std::optional<OctetSpan> recorded = Follow(argument, {0x30, 0xA1});
  if (!recorded) return;
  if (const std::optional<OctetSpan> currency = Follow(*recorded, {0x81}); currency && Printable(*currency)) {
    PrintFieldName(out, "Currency");
    for (const Octet octet : *currency) out.Put(static_cast<char>(octet));
    out.Put('\n');
  }
  const std::optional<OctetSpan> amount = Follow(*recorded, {0xA2, 0x81});
  const std::optional<OctetSpan> multiplier = Follow(*recorded, {0xA2, 0x82});
  const std::optional<std::int64_t> value = amount ? IntegerOf(*amount) : std::nullopt;
  if (!value) return;
  PrintFieldName(out, "Amount");
  out.Decimal(*value);
  if (const std::optional<std::int64_t> times = multiplier ? IntegerOf(*multiplier) : std::nullopt) {
    if (const ValueText* row =
            *times >= 0 && *times < 7 ? FindRow(kMultipliers, static_cast<std::uint32_t>(*times)) : nullptr) {
      out.Put(" x ");
      out.Put(row->text);
    }
  }
  out.Put('\n');
}

bool IsAdviceOfCharge(std::int64_t operation) { return operation >= 33 && operation <= 36; }

// The items of a component behind its invoke identifier, by component type.
void PrintInvoke(OutputWriter& out, OctetSpan octets) {
  std::optional<std::int64_t> operation;
  while (!octets.empty()) {
    const std::optional<BerItem> item = ReadItem(octets);
    if (!item) return PrintMalformed(out, octets);
    if (item->tag == 0x80) {
      PrintValue(out, "Linked identifier", *item);
    } else if (!operation && (item->tag == 0x02 || item->tag == 0x06)) {
      PrintValue(out, "Operation value", *item, kOperations);
      operation = item->tag == 0x02 ? IntegerOf(item->contents) : std::nullopt;
      if (!operation) operation = -1;
    } else {
      PrintFieldName(out, "Argument");
      out.Put('\n');
      PrintItems(out, octets, 1);
      if (operation && IsAdviceOfCharge(*operation)) PrintAdviceOfCharge(out, *operation, octets);
      return;
    }
    octets = octets.subspan(item->size);
  }
}

void PrintReturnResult(OutputWriter& out, OctetSpan octets) {
  const std::optional<BerItem> sequence = ReadItem(octets);
  if (!sequence) return PrintMalformed(out, octets);
  if (sequence->tag != 0x30) return PrintItems(out, octets, 1);
  OctetSpan inside = sequence->contents;
  if (const std::optional<BerItem> operation = ReadItem(inside);
      operation && (operation->tag == 0x02 || operation->tag == 0x06)) {
    PrintValue(out, "Operation value", *operation, kOperations);
    inside = inside.subspan(operation->size);
  }
  if (!inside.empty()) {
    PrintFieldName(out, "Result");
    out.Put('\n');
    PrintItems(out, inside, 1);
  }
  if (sequence->size < octets.size()) PrintItems(out, octets.subspan(sequence->size), 1);
}

void PrintReturnError(OutputWriter& out, OctetSpan octets) {
  const std::optional<BerItem> error = ReadItem(octets);
  if (!error) return PrintMalformed(out, octets);
  PrintValue(out, "Error value", *error, kErrors);
  if (error->size < octets.size()) {
    PrintFieldName(out, "Parameter");
    out.Put('\n');
    PrintItems(out, octets.subspan(error->size), 1);
  }
}

void PrintReject(OutputWriter& out, OctetSpan octets) {
  const std::optional<BerItem> problem = ReadItem(octets);
  if (!problem) return PrintMalformed(out, octets);
  const ValueText* kind = FindRow(kProblemKinds, problem->tag);
  const std::optional<std::int64_t> value = IntegerOf(problem->contents);
  if (kind == nullptr || !value) return PrintItems(out, octets, 1);
  PrintNamedNumber(out, kind->text, *value, kProblemsByKind[problem->tag & 0x03]);
  if (problem->size < octets.size()) PrintItems(out, octets.subspan(problem->size), 1);
}

void PrintComponent(OutputWriter& out, const BerItem& component) {
  if (!PrintField(out, kComponentField, component.tag)) PrintCodedValue(out, "Component", component.tag, 8, "Unknown");
  PrintDecimalField(out, "Component length", static_cast<std::uint32_t>(component.contents.size()));
  if (component.tag < 0xA1 || component.tag > 0xA4) return PrintItems(out, component.contents, 1);
  // Every ROSE component starts with its invoke identifier (a Reject's may be NULL).
  OctetSpan octets = component.contents;
  const std::optional<BerItem> invoke = ReadItem(octets);
  if (!invoke) return PrintMalformed(out, octets);
  if (invoke->tag == 0x05) {
    PrintFieldName(out, "Invoke identifier");
    out.Put("none\n");
  } else {
    PrintValue(out, "Invoke identifier", *invoke);
  }
  octets = octets.subspan(invoke->size);
  switch (component.tag) {
    case 0xA1:
      return PrintInvoke(out, octets);
    case 0xA2:
      return octets.empty() ? void() : PrintReturnResult(out, octets);
    case 0xA3:
      return PrintReturnError(out, octets);
    default:
      return PrintReject(out, octets);
  }
}

}  // namespace

void DecodeFacility(OutputWriter& out, const ElementOctets& element) {
  const std::optional<Octet> octet3 = element.At(2);
  if (!octet3) return;
  if (!PrintField(out, kProtocolProfileField, *octet3))
    PrintCodedValue(out, "Protocol profile", FieldBits(*octet3, 5, 1), 5, "Reserved");
  for (OctetSpan octets = element.Slice(3); !octets.empty();) {
    const std::optional<BerItem> component = ReadItem(octets);
    if (!component) return PrintMalformed(out, octets);
    PrintComponent(out, *component);
    octets = octets.subspan(component->size);
  }
}

}  // namespace velmora
