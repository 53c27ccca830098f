#include "element_registry.h"

namespace velmora {

std::size_t OccupiedOctets(const ElementEntry* entry, const ElementOctets& element) {
  const bool single = entry != nullptr ? entry->form == ElementForm::SingleOctet : element.IsSingleOctet();
  return single ? 1 : element.Count();
}

std::size_t DecodeElement(OutputWriter& out, const ElementEntry* entry, const ElementOctets& element,
                          ElementPrefix prefix) {
  const std::size_t skipped = prefix == ElementPrefix::Printed ? 0 : kElementPrefix.size();
  if (entry == nullptr) {
    out.Put(kElementPrefix.substr(skipped));
    DecodeUnknownElement(out, element);
  } else {
    out.PutPadded(entry->heading.Padded().DropFront(skipped));
    entry->decode(out, element);
  }
  return OccupiedOctets(entry, element);
}

}  // namespace velmora
