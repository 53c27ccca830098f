// Display (0x28), Keypad facility (0x2C), Date/time (0x29).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeDisplay(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeKeypadFacility(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeDateTime(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
