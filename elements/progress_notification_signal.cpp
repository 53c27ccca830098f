// Progress indicator (0x1E), Notification indicator (0x27), Signal (0x34).
// Not decoded field by field yet: shown as a hexadecimal dump until then.
#include "elements/element_decoders.h"

namespace velmora {

int DecodeProgressIndicator(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeNotificationIndicator(const ElementOctets& element) { return DecodeUnknownElement(element); }

int DecodeSignal(const ElementOctets& element) { return DecodeUnknownElement(element); }

}  // namespace velmora
