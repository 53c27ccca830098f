#pragma once
// The Cause element's diagnostics (octet 5 onward): which coding the cause
// value selects, and its decoder.
#include <cstddef>

#include "q931/element.h"

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

// Prints the diagnostics heading and lines for the element's octets at
// positions first to count - 1 (count is L + 2). Nothing at or beyond count,
// nor beyond the frame, is read. Kind None prints nothing.
void DecodeCauseDiagnostics(OutputWriter& out, CauseDiagnosticKind kind, const ElementOctets& element,
                            std::size_t first, std::size_t count);

}  // namespace velmora
