#pragma once
// Every information-element decoder that a message walk can call. Each is an
// ElementDecoder: it prints the element's heading and field lines and returns
// the octets the element occupies.
#include "q931/element.h"

namespace velmora {

// Bearer capability (0x04): elements/bearer_capability.cpp
int DecodeBearerCapability(OutputWriter& out, const ElementOctets& element);

// Low layer compatibility (0x7C): elements/low_layer_compatibility.cpp
int DecodeLowLayerCompatibility(OutputWriter& out, const ElementOctets& element);

// High layer compatibility (0x7D): elements/high_layer_compatibility.cpp
int DecodeHighLayerCompatibility(OutputWriter& out, const ElementOctets& element);

// Cause (0x08), with its diagnostics: elements/cause.cpp
int DecodeCause(OutputWriter& out, const ElementOctets& element);

// Channel identification (0x18): elements/channel_identification.cpp
int DecodeChannelIdentification(OutputWriter& out, const ElementOctets& element);

// Progress indicator (0x1E), Notification indicator (0x27), Signal (0x34): elements/progress_notification_signal.cpp
int DecodeProgressIndicator(OutputWriter& out, const ElementOctets& element);
int DecodeNotificationIndicator(OutputWriter& out, const ElementOctets& element);
int DecodeSignal(OutputWriter& out, const ElementOctets& element);

// Network-specific facilities (0x20), Transit network selection (0x78): elements/network_facilities_transit_network.cpp
int DecodeNetworkSpecificFacilities(OutputWriter& out, const ElementOctets& element);
int DecodeTransitNetworkSelection(OutputWriter& out, const ElementOctets& element);

// User-user (0x7E): elements/user_user.cpp
int DecodeUserUser(OutputWriter& out, const ElementOctets& element);

// Call identity (0x10), Call state (0x14), Restart indicator (0x79): elements/call_identity_state_restart.cpp
int DecodeCallIdentity(OutputWriter& out, const ElementOctets& element);
int DecodeCallState(OutputWriter& out, const ElementOctets& element);
int DecodeRestartIndicator(OutputWriter& out, const ElementOctets& element);

// Calling/called party numbers and subaddresses (0x6C, 0x6D, 0x70, 0x71), Redirecting number (0x74):
// elements/party_numbers.cpp
int DecodeCallingPartyNumber(OutputWriter& out, const ElementOctets& element);
int DecodeCallingPartySubaddress(OutputWriter& out, const ElementOctets& element);
int DecodeCalledPartyNumber(OutputWriter& out, const ElementOctets& element);
int DecodeCalledPartySubaddress(OutputWriter& out, const ElementOctets& element);
int DecodeRedirectingNumber(OutputWriter& out, const ElementOctets& element);

// Single-octet elements: More data (0xA0), Sending complete (0xA1), Congestion level (0xBx), Repeat indicator (0xDx):
// elements/single_octet.cpp
int DecodeMoreData(OutputWriter& out, const ElementOctets& element);
int DecodeSendingComplete(OutputWriter& out, const ElementOctets& element);
int DecodeCongestionLevel(OutputWriter& out, const ElementOctets& element);
int DecodeRepeatIndicator(OutputWriter& out, const ElementOctets& element);

// Display (0x28), Keypad facility (0x2C), Date/time (0x29): elements/display_keypad_date_time.cpp
int DecodeDisplay(OutputWriter& out, const ElementOctets& element);
int DecodeKeypadFacility(OutputWriter& out, const ElementOctets& element);
int DecodeDateTime(OutputWriter& out, const ElementOctets& element);

// Packet-mode elements (0x40, 0x42 to 0x47, 0x4A): elements/packet_mode.cpp
int DecodeInformationRate(OutputWriter& out, const ElementOctets& element);
int DecodeEndToEndTransitDelay(OutputWriter& out, const ElementOctets& element);
int DecodeTransitDelaySelection(OutputWriter& out, const ElementOctets& element);
int DecodePacketLayerBinaryParameters(OutputWriter& out, const ElementOctets& element);
int DecodePacketLayerWindowSize(OutputWriter& out, const ElementOctets& element);
int DecodePacketSize(OutputWriter& out, const ElementOctets& element);
int DecodeClosedUserGroup(OutputWriter& out, const ElementOctets& element);
int DecodeReverseChargingIndication(OutputWriter& out, const ElementOctets& element);

}  // namespace velmora
