#pragma once
// The Cause element's diagnostics (octet 5 onward): which coding the cause
// value selects, and its decoder.
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

}  // namespace velmora
