// Calling/called party numbers and subaddresses (0x6C, 0x6D, 0x70, 0x71), Redirecting number (0x74).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeCallingPartyNumber(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeCallingPartySubaddress(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeCalledPartyNumber(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeCalledPartySubaddress(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeRedirectingNumber(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
