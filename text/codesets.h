#pragma once
// The codeset each Q.931 information element of a message stands in. A
// locking shift (1001 0nnn) puts every element behind it in codeset nnn, a
// non-locking one (1001 1nnn) only the next element; a shift itself stands
// in the codeset before it. Only codeset 0 holds the elements of Q.931.
#include "octet.h"

namespace velmora {

class CodesetShifts {
 public:
  // The codeset of the next element, whose identifier is `identifier`.
  unsigned Next(Octet identifier) {
    const unsigned codeset = nextOnly_ >= 0 ? static_cast<unsigned>(nextOnly_) : locked_;
    nextOnly_ = -1;
    if ((identifier & 0xF0) == 0x90) {
      if ((identifier & 0x08) == 0) {
        locked_ = identifier & 0x07U;
      } else {
        nextOnly_ = identifier & 0x07;
      }
    }
    return codeset;
  }

 private:
  unsigned locked_ = 0;
  int nextOnly_ = -1;
};

}  // namespace velmora
