#pragma once
// Every information-element decoder that a message walk can call. Each is an
// ElementDecoder: it prints the element's heading and field lines and returns
// the octets the element occupies.
#include "q931/element.h"

namespace velmora {

// Bearer capability (0x04): elements/bearer_capability.cpp
int DecodeBearerCapability(const ElementOctets& element);

// Low layer compatibility (0x7C): elements/low_layer_compatibility.cpp
int DecodeLowLayerCompatibility(const ElementOctets& element);

// High layer compatibility (0x7D): elements/high_layer_compatibility.cpp
int DecodeHighLayerCompatibility(const ElementOctets& element);

// Cause (0x08), with its diagnostics: elements/cause.cpp
int DecodeCause(const ElementOctets& element);

// Channel identification (0x18): elements/channel_identification.cpp
int DecodeChannelIdentification(const ElementOctets& element);

// Progress indicator (0x1E), Notification indicator (0x27), Signal (0x34): elements/progress_notification_signal.cpp
int DecodeProgressIndicator(const ElementOctets& element);
int DecodeNotificationIndicator(const ElementOctets& element);
int DecodeSignal(const ElementOctets& element);

// Network-specific facilities (0x20), Transit network selection (0x78): elements/network_facilities_transit_network.cpp
int DecodeNetworkSpecificFacilities(const ElementOctets& element);
int DecodeTransitNetworkSelection(const ElementOctets& element);

// User-user (0x7E): elements/user_user.cpp
int DecodeUserUser(const ElementOctets& element);

// Call identity (0x10), Call state (0x14), Restart indicator (0x79): elements/call_identity_state_restart.cpp
int DecodeCallIdentity(const ElementOctets& element);
int DecodeCallState(const ElementOctets& element);
int DecodeRestartIndicator(const ElementOctets& element);

// Calling/called party numbers and subaddresses (0x6C, 0x6D, 0x70, 0x71), Redirecting number (0x74):
// elements/party_numbers.cpp
int DecodeCallingPartyNumber(const ElementOctets& element);
int DecodeCallingPartySubaddress(const ElementOctets& element);
int DecodeCalledPartyNumber(const ElementOctets& element);
int DecodeCalledPartySubaddress(const ElementOctets& element);
int DecodeRedirectingNumber(const ElementOctets& element);

// Single-octet elements: More data (0xA0), Sending complete (0xA1), Congestion level (0xBx), Repeat indicator (0xDx):
// elements/single_octet.cpp
int DecodeMoreData(const ElementOctets& element);
int DecodeSendingComplete(const ElementOctets& element);
int DecodeCongestionLevel(const ElementOctets& element);
int DecodeRepeatIndicator(const ElementOctets& element);

// Display (0x28), Keypad facility (0x2C), Date/time (0x29): elements/display_keypad_date_time.cpp
int DecodeDisplay(const ElementOctets& element);
int DecodeKeypadFacility(const ElementOctets& element);
int DecodeDateTime(const ElementOctets& element);

// Packet-mode elements (0x40, 0x42 to 0x47, 0x4A): elements/packet_mode.cpp
int DecodeInformationRate(const ElementOctets& element);
int DecodeEndToEndTransitDelay(const ElementOctets& element);
int DecodeTransitDelaySelection(const ElementOctets& element);
int DecodePacketLayerBinaryParameters(const ElementOctets& element);
int DecodePacketLayerWindowSize(const ElementOctets& element);
int DecodePacketSize(const ElementOctets& element);
int DecodeClosedUserGroup(const ElementOctets& element);
int DecodeReverseChargingIndication(const ElementOctets& element);

}  // namespace velmora
