#pragma once
// The Cause element's diagnostics (octet 5 onward): which coding the cause
// value selects, and its decoder; and what the element says, for readers
// that print no lines.
#include <optional>
#include <string_view>

#include "element_octets.h"
#include "octet.h"
#include "output_writer.h"

namespace velmora {

// The coding of the diagnostic octets, chosen by the cause value.
enum class CauseDiagnosticKind {
  None,
  Condition,
  TransitNetworkIdentity,
  CcbsIndicator,
  CallRejected,
  NewDestination,
  FacilityIdentification,
  AttributeIdentity,
  ChannelType,
  IncompatibleParameter,
  TimerNumber,
  MessageType,
  ParameterName,
};

// Prints the diagnostics heading and lines for the diagnostic octets, from
// the one behind octet 4 to the element's end. Kind None, or no octet,
// prints nothing.
void DecodeCauseDiagnostics(OutputWriter& out, CauseDiagnosticKind kind, OctetSpan diagnostics);

// A Cause element's location (octet 3 bits 4-1) and cause value (octet 4
// bits 7-1: the class in bits 7-5, the value within it in bits 4-1), read
// as the decoder reads them. The value is missing when the element ends
// before octet 4.
struct CauseReading {
  unsigned location;
  std::optional<unsigned> value;
};

// Nothing when the element ends before octet 3.
std::optional<CauseReading> ReadCause(const ElementOctets& element);

// The meaning the decoder prints on the cause value line; empty for a value
// it has no line for.
std::string_view CauseValueMeaning(unsigned value);

}  // namespace velmora
