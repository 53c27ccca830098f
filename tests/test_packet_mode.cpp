// The packet-mode elements.
#include <gtest/gtest.h>

#include "test_support.h"

namespace velmora {

TEST(PacketMode, DecodesEachElement) {
  const testing::ElementCase cases[] = {

      // Reserved rate codes are shown in hexadecimal.
      {{0x40, 0x04, 0x0E, 0x00, 0x1F, 0x8D},
       "Information rate\n\t\tIncoming information rate=0xe  Reserved\n\t\tOutgoing information rate=0x0  Reserved\n"
       "\t\tMinimum incoming information rate=0x1f  Reserved\n"
       "\t\tMinimum outgoing information rate=01101  64000 bit/s\n"},
      // A short element at the frame's end: only the rates the frame holds.
      {{0x40, 0x01, 0x03, 0x07},
       "Information rate\n"
       "\t\tIncoming information rate=00011  75 bit/s\n\t\tOutgoing information rate=00111  1200 bit/s\n"},
      {{0x42, 0x03, 0x01, 0x02, 0x03}, "End-to-end transit delay\n\t\tCumulative transit delay value= 16643 ms\n"},
      {{0x42, 0x06, 0x01, 0x02, 0x03, 0x00, 0x01, 0x64, 0x7F},
       "End-to-end transit delay\n\t\tCumulative transit delay value= 16643 ms\n"
       "\t\tRequested end-to-end transit delay value= 228 ms\n"},
      // Bits above the value's 2 + 7 + 7 are dropped: the maximum is 65535.
      {{0x42, 0x09, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x83, 0xFF, 0xFF},
       "End-to-end transit delay\n\t\tCumulative transit delay value= 0 ms\n"
       "\t\tRequested end-to-end transit delay value= 1 ms\n"
       "\t\tMaximum end-to-end transit delay value= 65535 ms\n"},
      // The requested value needs L of 4 or more, the maximum 7 or more, even
      // when the frame holds their octets behind the element.
      {{0x42, 0x03, 0x01, 0x02, 0x03, 0x00, 0x01, 0x64},
       "End-to-end transit delay\n\t\tCumulative transit delay value= 16643 ms\n"},
      {{0x42, 0x04, 0x01, 0x02, 0x03, 0x00, 0x01, 0x64},
       "End-to-end transit delay\n\t\tCumulative transit delay value= 16643 ms\n"
       "\t\tRequested end-to-end transit delay value= 228 ms\n"},
      {{0x42, 0x06, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x83, 0xFF, 0xFF},
       "End-to-end transit delay\n\t\tCumulative transit delay value= 0 ms\n"
       "\t\tRequested end-to-end transit delay value= 1 ms\n"},
      {{0x42, 0x07, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x83, 0xFF, 0xFF},
       "End-to-end transit delay\n\t\tCumulative transit delay value= 0 ms\n"
       "\t\tRequested end-to-end transit delay value= 1 ms\n"
       "\t\tMaximum end-to-end transit delay value= 65535 ms\n"},
      {{0x43, 0x03, 0x00, 0x3E, 0x40},
       "Transit delay selection and indication\n\t\tTransit delay selection and indication value= 8000 ms\n"},
      // A short element reads the value behind it, up to the frame end.
      {{0x42, 0x01, 0x00, 0x01, 0x05}, "End-to-end transit delay\n\t\tCumulative transit delay value= 133 ms\n"},
      {{0x43, 0x02, 0x00, 0x01}, "Transit delay selection and indication\n"},
      {{0x44, 0x01, 0x97},
       "Packet layer binary parameters\n\t\tFast select=10  Fast select requested with no restriction of response\n"
       "\t\tExpedited data=1  Request indicated/request accepted\n"
       "\t\tDelivery confirmation=1  End-to-end confirmation\n\t\tModulus=1  Modulus 128 sequencing\n"},
      // The backward value only when it lies inside the element.
      {{0x45, 0x01, 0x02, 0x07}, "Packet layer window size\n\t\tForward value=0x2\n"},
      {{0x46, 0x02, 0x8A, 0x0B}, "Packet size\n\t\tForward value=0xa\n\t\tBackward value=0xb\n"},
      {{0x47, 0x04, 0x01, 0x31, 0x32, 0x41},
       "Closed user group\n\t\tCUG indication=001  Closed user group selection\n"
       "\t\tCUG index code=0110001  CUG index=1\n\t\tCUG index code=0110010  CUG index=2\n"},
      {{0x47, 0x02, 0x02, 0xB9},
       "Closed user group\n\t\tCUG indication=010  Closed user group with outgoing access selection and indication\n"
       "\t\tCUG index code=0111001  CUG index=9\n"},
      {{0x4A, 0x01, 0x81},
       "Reverse charging indication\n\t\tReverse charging indication=001  Reverse charging requested\n"},
      {{0x4A, 0x01, 0x82}, "Reverse charging indication\n"},
      // L = 0 leaves the heading alone.
      {{0x40, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "Information rate\n"},
      {{0x42, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "End-to-end transit delay\n"},
      {{0x43, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "Transit delay selection and indication\n"},
      {{0x44, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "Packet layer binary parameters\n"},
      {{0x45, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "Packet layer window size\n"},
      {{0x46, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "Packet size\n"},
      {{0x47, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "Closed user group\n"},
      {{0x4A, 0x00, 0x0B, 0x0B, 0x0B, 0x0B}, "Reverse charging indication\n"},
  };
  testing::ExpectDecodes(cases);
}

}  // namespace velmora
