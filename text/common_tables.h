#pragma once
// Meaning tables that several element groups print with the same wording.
// A table that merely looks alike but words one row differently stays with
// its own element (Cause and Call state keep their own coding standards).
#include "field_text.h"

namespace velmora {

// Coding standard, bits 7-6 of octet 3 (of octet 3.2 in Channel
// identification): Bearer capability, Low and High layer compatibility,
// Channel identification, Progress indicator.
inline constexpr ValueText kCodingStandard[] = {
    {0b00, "ITU-T standardized coding"},
    {0b01, "ISO/IEC Standard"},
    {0b10, "National standard"},
    {0b11, "Standard defined for the network (either public or private) present on the network side of the interface"},
};

// Bearer capability's octet 3 to 7 fields, which the attribute identity
// diagnostics of Cause name with the same texts. Low layer compatibility
// shares capability, rate and layer 1; its transfer mode and layer 2 and 3
// tables are its own.

// Information transfer capability, octet 3 bits 5-1.
inline constexpr ValueText kInformationTransferCapability[] = {
    {0b00000, "Speech"},
    {0b01000, "Unrestricted digital information"},
    {0b01001, "Restricted digital information"},
    {0b10000, "3.1 kHz audio"},
    {0b10001, "Unrestricted digital information with tones/announcements"},
    {0b11000, "Video"},
};

// Transfer mode, octet 4 bits 7-6.
inline constexpr ValueText kBearerTransferMode[] = {{0b00, "Circuit mode"}, {0b10, "Packet mode"}};

// Information transfer rate, octet 4 bits 5-1.
inline constexpr ValueText kInformationTransferRate[] = {
    {0b00000, "This code shall be used for packet-mode calls"},
    {0b10000, "64 kbit/s"},
    {0b10001, "2 * 64 kbit/s"},
    {0b10011, "384 kbit/s"},
    {0b10101, "1536 kbit/s"},
    {0b10111, "1920 kbit/s"},
    {0b11000, "Multirate (64 kbit/s base rate)"},
};

// User information layer 1 protocol, octet 5 bits 5-1.
inline constexpr ValueText kLayer1Protocol[] = {
    {0b00001, "ITU-T standardized rate adaption V.110[7], I.460[15] and X.30[8]"},
    {0b00010, "Recommendation G.711[10] Mu-law"},
    {0b00011, "Recommendation G.711 A-law"},
    {0b00100, "Recommendation G.721[11] 32 kbit/s ADPCM and Recommendation I.460[15]"},
    {0b00101, "Recommendations H.221 and H.242"},
    {0b00110, "Recommendations H.223[92] and H.245[93]"},
    {0b00111, "Non-ITU-T standardized rate adaption"},
    {0b01000, "ITU-T standardized rate adaption V.120[9]"},
    {0b01001, "ITU-T standardized rate adaption X.31[14] HDLC flag stuffing"},
};

// User information layer 2 protocol, octet 6 bits 5-1.
inline constexpr ValueText kBearerLayer2Protocol[] = {
    {0b00010, "Recommendation Q.921/I.441[3]"},
    {0b00110, "Recommendation X.25[5], link layer"},
    {0b01100, "LAN logical link control (ISO/IEC 8802-2[39])"},
};

// User information layer 3 protocol, octet 7 bits 5-1.
inline constexpr ValueText kBearerLayer3Protocol[] = {
    {0b00010, "Recommendation Q.931"},
    {0b00110, "Recommendation X.25, packet layer"},
    {0b01011, "ISO/IEC TR 9577[82] (Protocol identification in the network layer)"},
};

// The fields of the tables above, where every user names them alike.
inline constexpr CodedField kCodingStandardField = Coded<"Coding standard", 7, 6, kCodingStandard>;
inline constexpr CodedField kTransferCapabilityField =
    Coded<"Information transfer capability", 5, 1, kInformationTransferCapability>;
inline constexpr CodedField kBearerTransferModeField = Coded<"Transfer mode", 7, 6, kBearerTransferMode>;
inline constexpr CodedField kTransferRateField = Coded<"Information transfer rate", 5, 1, kInformationTransferRate>;
inline constexpr CodedField kLayer1ProtocolField = Coded<"User information layer 1 protocol", 5, 1, kLayer1Protocol>;
inline constexpr CodedField kBearerLayer2ProtocolField =
    Coded<"User information layer 2 protocol", 5, 1, kBearerLayer2Protocol>;
inline constexpr CodedField kBearerLayer3ProtocolField =
    Coded<"User information layer 3 protocol", 5, 1, kBearerLayer3Protocol>;

// Channel type, bits 4-1: Channel identification's octet 3.2 and the
// channel type diagnostics of Cause.
inline constexpr ValueText kChannelType[] = {
    {0b0011, "B-channel units"},
    {0b0110, "H0-channel units"},
    {0b1000, "H11-channel units"},
    {0b1001, "H12-channel units"},
};

// Message types by their octet: the dispatch's names, and those the message
// type diagnostics of Cause print.
inline constexpr ValueText kMessageTypeNames[] = {
    {0x01, "ALERTING"},
    {0x02, "CALL PROCEEDING"},
    {0x03, "PROGRESS"},
    {0x05, "SETUP"},
    {0x07, "CONNECT"},
    {0x0D, "SETUP ACKNOWLEDGE"},
    {0x0F, "CONNECT ACKNOWLEDGE"},
    {0x20, "USER INFORMATION"},
    {0x21, "SUSPEND REJECT"},
    {0x22, "RESUME REJECT"},
    {0x25, "SUSPEND"},
    {0x26, "RESUME"},
    {0x2D, "SUSPEND ACKNOWLEDGE"},
    {0x2E, "RESUME ACKNOWLEDGE"},
    {0x45, "DISCONNECT"},
    {0x46, "RESTART"},
    {0x4D, "RELEASE"},
    {0x4E, "RESTART ACKNOWLEDGE"},
    {0x5A, "RELEASE COMPLETE"},
    {0x60, "SEGMENT"},
    {0x6E, "NOTIFY"},
    {0x75, "STATUS ENQUIRY"},
    {0x79, "CONGESTION CONTROL"},
    {0x7B, "INFORMATION"},
    {0x7D, "STATUS"},
};

}  // namespace velmora
