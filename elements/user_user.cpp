// User-user (0x7E): the protocol discriminator of the user information and
// the user information octets, always shown in hexadecimal.
#include "element_registry.h"
#include "field_text.h"

namespace velmora {
namespace {

constexpr ValueText kProtocolDiscriminator[] = {
    {0x00, "User-specific protocol"},
    {0x01, "OSI high layer protocols"},
    {0x02, "Recommendation X.244 [44]"},
    {0x03, "Reserved for system management convergence function"},
    {0x04, "IA5 characters"},
    {0x05, "X.208 and X.209 coded user information"},
    {0x07, "Recommendation V.120 [9] rate adaption"},
    {0x08, "Q.931/I.451 user-network call control messages"},
};
constexpr CodedField kProtocolDiscriminatorField = Coded<"Protocol discriminator", 8, 1, kProtocolDiscriminator>;

// Discriminators named by range rather than one by one; these lines show
// the octet as "0x%x" instead of its bits.
constexpr RangeText kProtocolDiscriminatorRanges[] = {
    {0x10, 0x3F, "Reserved for other network layer or layer 3 protocols, including Recommendation X.25"},
    {0x40, 0x4F, "National use"},
    {0x50, 0xFE, "Reserved for other network layer or layer 3 protocols, including Recommendation X.25"},
};

void PrintProtocolDiscriminator(OutputWriter& out, Octet discriminator) {
  if (PrintField(out, kProtocolDiscriminatorField, discriminator)) return;
  if (const RangeText* range = FindRange(kProtocolDiscriminatorRanges, discriminator))
    PrintHexMeaning(out, kProtocolDiscriminatorField.name, discriminator, range->text);
}

}  // namespace

void DecodeUserUser(OutputWriter& out, const ElementOctets& element) {
  const auto discriminator = element.At(2);
  if (!discriminator) return;
  PrintProtocolDiscriminator(out, *discriminator);
  PrintOctetString(out, "User information", element.Slice(3));
}

}  // namespace velmora
