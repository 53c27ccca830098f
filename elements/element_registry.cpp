#include "element_registry.h"

namespace velmora {

std::size_t OccupiedOctets(const ElementEntry* entry, const ElementOctets& element) {
  const bool single = entry != nullptr ? entry->form == ElementForm::SingleOctet : element.IsSingleOctet();
  return single ? 1 : element.Count();
}

}  // namespace velmora
