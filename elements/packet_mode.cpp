// Packet-mode elements (0x40, 0x42 to 0x47, 0x4A).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeInformationRate(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeEndToEndTransitDelay(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeTransitDelaySelection(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodePacketLayerBinaryParameters(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodePacketLayerWindowSize(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodePacketSize(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeClosedUserGroup(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeReverseChargingIndication(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
