// Cause (0x08): coding standard, location, recommendation, cause class and
// value; the diagnostic octets go to the coding the cause value selects.
#include "cause.h"

#include <algorithm>
#include <array>
#include <optional>

#include "element_registry.h"
#include "field_text.h"

namespace velmora {
namespace {

// Not the shared coding standard table: Cause names 11 "Standard specific
// to identified location".
constexpr ValueText kCauseCodingStandard[] = {
    {0b00, "ITU-T standardized coding"},
    {0b01, "ISO/IEC Standard"},
    {0b10, "National standard"},
    {0b11, "Standard specific to identified location"},
};
constexpr CodedField kCauseCodingStandardField = Coded<"Coding standard", 7, 6, kCauseCodingStandard>;

// 0110, 1000, 1001 and 1011 have no meaning here; 1100 to 1111 are national.
constexpr ValueText kLocations[] = {
    {0b0000, "user (U)"},
    {0b0001, "private network serving the local user (LPN)"},
    {0b0010, "public network serving the local user (LN)"},
    {0b0011, "transit network (TN)"},
    {0b0100, "public network serving the remote user (RLN)"},
    {0b0101, "private network serving the remote user (RPN)"},
    {0b0111, "international network (INTL)"},
    {0b1010, "network beyond interworking point (BI)"},
};
constexpr CodedField kLocationField = Coded<"Location", 4, 1, kLocations>;
constexpr unsigned kFirstNationalLocation = 0b1100;

constexpr ValueText kRecommendations[] = {
    {0b0000000, "Q.931"},
    {0b0000011, "X.21"},
    {0b0000100, "X.25"},
    {0b0000101, "public land mobile networks, Q.1031/Q.1051"},
};
constexpr CodedField kRecommendationField = Coded<"Recommendation", 7, 1, kRecommendations>;

constexpr ValueText kCauseClasses[] = {
    {0b000, "normal event"},
    {0b001, "normal event"},
    {0b010, "resource unavailable"},
    {0b011, "service or option not available"},
    {0b100, "service or option not implemented"},
    {0b101, "invalid message"},
    {0b110, "protocol error"},
    {0b111, "interworking"},
};
constexpr CodedField kCauseClassField = Coded<"Cause Class", 7, 5, kCauseClasses>;

// Keyed by the whole 7-bit cause value (class in bits 7-5, value in bits 4-1),
// the way Q.931 numbers its causes; the value line shows bits 4-1 only.
constexpr ValueText kCauseValues[] = {
    // Class 000: normal event.
    {0x01, "Unallocated (unassigned) number"},
    {0x02, "No route to specified transit network"},
    {0x03, "No route to destination"},
    {0x04, "Send special information tone"},
    {0x05, "Misdialled trunk prefix"},
    {0x06, "Channel unacceptable"},
    {0x07, "Call awarded and being delivered in an established channel"},
    {0x08, "Preemption"},
    {0x09, "Preemption - circuit reserved for reuse"},
    // Class 001: normal event.
    {0x10, "Normal call clearing"},
    {0x11, "User busy"},
    {0x12, "No user responding"},
    {0x13, "No answer from user (user alerted)"},
    {0x14, "Subscriber absent"},
    {0x15, "Call rejected"},
    {0x16, "Number changed"},
    {0x17, "Redirection to new destination"},
    {0x19, "Exchange routing error"},
    {0x1A, "Non-selected user clearing"},
    {0x1B, "Destination out of order"},
    {0x1C, "Invalid number format (address incomplete)"},
    {0x1D, "Facility rejected"},
    {0x1E, "Response to STATUS ENQUIRY"},
    {0x1F, "Normal, unspecified"},
    // Class 010: resource unavailable.
    {0x22, "No circuit/channel available"},
    {0x26, "Network out of order"},
    {0x27, "Permanent frame mode connection out of service"},
    {0x28, "Permanent frame mode connection operational"},
    {0x29, "Temporary failure"},
    {0x2A, "Switching equipment congestion"},
    {0x2B, "Access information discarded"},
    {0x2C, "Requested circuit/channel not available"},
    {0x2E, "Precedence call blocked"},
    {0x2F, "Resource unavailable, unspecified"},
    // Class 011: service or option not available.
    {0x31, "Quality of service not available"},
    {0x32, "Requested facility not subscribed"},
    {0x35, "Outgoing calls barred within CUG"},
    {0x37, "Incoming calls barred within CUG"},
    {0x39, "Bearer capability not authorized"},
    {0x3A, "Bearer capability not presently available"},
    {0x3E, "Inconsistency in designated outgoing access information and subscriber class"},
    {0x3F, "Service or option not available, unspecified"},
    // Class 100: service or option not implemented.
    {0x41, "Bearer capability not implemented"},
    {0x42, "Channel type not implemented"},
    {0x45, "Requested facility not implemented"},
    {0x46, "Only restricted digital information bearer capability is available"},
    {0x4F, "Service or option not implemented, unspecified"},
    // Class 101: invalid message.
    {0x51, "Invalid call reference value"},
    {0x52, "Identified channel does not exist"},
    {0x53, "A suspended call exists, but this call identity does not"},
    {0x54, "Call identity in use"},
    {0x55, "No call suspended"},
    {0x56, "Call having the requested call identity has been cleared"},
    {0x57, "User not member of CUG"},
    {0x58, "Incompatible destination"},
    {0x5A, "Non-existent CUG"},
    {0x5B, "Invalid transit network selection"},
    {0x5F, "Invalid message, unspecified"},
    // Class 110: protocol error.
    {0x60, "Mandatory information element is missing"},
    {0x61, "Message type non-existent or not implemented"},
    {0x62, "Message not compatible with call state or message type non-existent or not implemented"},
    {0x63, "Information element /parameter non-existent or not implemented"},
    {0x64, "Invalid information element contents"},
    {0x65, "Message not compatible with call state"},
    {0x66, "Recovery on timer expiry"},
    {0x67, "Parameter non-existent or not implemented, passed on"},
    {0x6E, "Message with unrecognized parameter, discarded"},
    {0x6F, "Protocol error, unspecified"},
    // Class 111: interworking.
    {0x7F, "Interworking, unspecified"},
};

// The value line shows bits 4-1 of the cause, its meaning all seven.
constexpr CodedField kCauseValueField = Coded<"Cause Value", 7, 1, kCauseValues, 4>;

// The diagnostic coding each cause value announces; every other value,
// and every value without a line above, carries no decodable diagnostics.
struct CauseDiagnosticRow {
  unsigned cause;
  CauseDiagnosticKind kind;
};
constexpr CauseDiagnosticRow kCauseDiagnostics[] = {
    {0x01, CauseDiagnosticKind::Condition},
    {0x02, CauseDiagnosticKind::TransitNetworkIdentity},
    {0x03, CauseDiagnosticKind::Condition},
    {0x10, CauseDiagnosticKind::Condition},
    {0x11, CauseDiagnosticKind::CcbsIndicator},
    {0x15, CauseDiagnosticKind::CallRejected},
    {0x16, CauseDiagnosticKind::NewDestination},
    {0x1D, CauseDiagnosticKind::FacilityIdentification},
    {0x22, CauseDiagnosticKind::CcbsIndicator},
    {0x31, CauseDiagnosticKind::Condition},
    {0x32, CauseDiagnosticKind::FacilityIdentification},
    {0x39, CauseDiagnosticKind::AttributeIdentity},
    {0x3A, CauseDiagnosticKind::AttributeIdentity},
    {0x41, CauseDiagnosticKind::AttributeIdentity},
    {0x42, CauseDiagnosticKind::ChannelType},
    {0x45, CauseDiagnosticKind::FacilityIdentification},
    {0x58, CauseDiagnosticKind::IncompatibleParameter},
    {0x61, CauseDiagnosticKind::MessageType},
    {0x62, CauseDiagnosticKind::MessageType},
    {0x65, CauseDiagnosticKind::MessageType},
    {0x66, CauseDiagnosticKind::TimerNumber},
    {0x67, CauseDiagnosticKind::ParameterName},
    {0x6E, CauseDiagnosticKind::ParameterName},
};

// The rows above by cause value.
constexpr std::array<CauseDiagnosticKind, 128> kDiagnosticKinds = [] {
  std::array<CauseDiagnosticKind, 128> kinds{};
  kinds.fill(CauseDiagnosticKind::None);
  for (const CauseDiagnosticRow& row : kCauseDiagnostics) kinds[row.cause] = row.kind;
  return kinds;
}();

// Octet 4 stands behind octet 3a when octet 3's extension bit announces
// 3a; 3a's own extension bit is not looked at.
constexpr std::size_t CauseValuePosition(Octet octet3) { return AnnouncesMore(octet3) ? 4 : 3; }

void PrintLocation(OutputWriter& out, Octet octet3) {
  const unsigned location = kLocationField.ValueIn(octet3);
  if (location >= kFirstNationalLocation) {
    // This line has a blank after "=".
    PrintFieldName(out, kLocationField.name);
    out.SpaceHex(location);
    out.Put("  reserved for national use\n");
    return;
  }
  PrintField(out, kLocationField, octet3);
}

}  // namespace

// Octet 3 (extension, coding standard, location), octet 3a (recommendation)
// when octet 3's extension bit is 0, octet 4 (class, value), then the
// diagnostics. An element that ends before a field's octet ends the lines there.
void DecodeCause(OutputWriter& out, const ElementOctets& element) {
  const std::optional<Octet> octet3 = element.At(2);
  if (!octet3) return;
  PrintField(out, kCauseCodingStandardField, *octet3);
  PrintLocation(out, *octet3);

  const std::size_t octet4Position = CauseValuePosition(*octet3);
  if (AnnouncesMore(*octet3)) {
    const std::optional<Octet> octet3a = element.At(3);
    if (!octet3a) return;
    PrintField(out, kRecommendationField, *octet3a);
  }

  const std::optional<Octet> octet4 = element.At(octet4Position);
  if (!octet4) return;
  PrintField(out, kCauseClassField, *octet4);
  const bool named = PrintField(out, kCauseValueField, *octet4);
  const CauseDiagnosticKind kind =
      named ? kDiagnosticKinds[kCauseValueField.ValueIn(*octet4)] : CauseDiagnosticKind::None;

  // Diagnostics only when their first octet lies inside the element and the frame.
  const OctetSpan diagnostics = element.Slice(octet4Position + 1);
  if (!diagnostics.empty() && kind != CauseDiagnosticKind::None) DecodeCauseDiagnostics(out, kind, diagnostics);
}

std::optional<CauseReading> ReadCause(const ElementOctets& element) {
  const std::optional<Octet> octet3 = element.At(2);
  if (!octet3) return std::nullopt;
  CauseReading reading{kLocationField.ValueIn(*octet3), std::nullopt};
  if (const std::optional<Octet> octet4 = element.At(CauseValuePosition(*octet3)))
    reading.value = FieldBits(*octet4, 7, 1);
  return reading;
}

void PrintCauseNumber(OutputWriter& out, const ElementOctets& element) {
  const std::optional<CauseReading> cause = ReadCause(element);
  if (!cause || !cause->value) return;
  PrintFieldName(out, "Cause number");
  out.Put('#');
  out.Decimal(*cause->value);
  if (const std::string_view meaning = CauseValueMeaning(*cause->value); !meaning.empty()) {
    out.Put("  ");
    out.Put(meaning);
  }
  out.Put('\n');
  // Recovery on timer expiry: the diagnostic is the timer's number, three IA5 digits.
  constexpr unsigned kRecoveryOnTimerExpiry = 102;
  if (*cause->value != kRecoveryOnTimerExpiry) return;
  const OctetSpan timer = element.Slice(CauseValuePosition(*element.At(2)) + 1);
  const auto digit = [](Octet octet) { return (octet & 0x7F) >= '0' && (octet & 0x7F) <= '9'; };
  if (timer.size() != 3 || !std::all_of(timer.begin(), timer.end(), digit)) return;
  PrintFieldName(out, "Timer");
  out.Put('T');
  for (const Octet octet : timer) out.Put(static_cast<char>(octet & 0x7F));
  out.Put('\n');
}

// The meanings of the cause value table by value, for a look-up per cause.
constexpr std::array<std::string_view, 128> kCauseMeaningsByValue = [] {
  std::array<std::string_view, 128> meanings{};
  for (const ValueText& row : kCauseValues) meanings[row.value] = row.text;
  return meanings;
}();

std::string_view CauseValueMeaning(unsigned value) {
  return value < kCauseMeaningsByValue.size() ? kCauseMeaningsByValue[value] : std::string_view();
}

}  // namespace velmora
