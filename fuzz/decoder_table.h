#pragma once
// Every element decoder with the count it must return, for the decoder and
// message-layer fuzz targets.
#include <cstddef>
#include <string>

#include "elements/element_decoders.h"
#include "fuzz/fuzz_support.h"

namespace velmora::fuzz {

enum class Form {
  SingleOctet,     // always 1
  VariableLength,  // always L + 2
  EitherByBit8,    // the unknown-element dump: 1 when bit 8 is set, else L + 2
};

struct DecoderEntry {
  const char* name;
  ElementDecoder decoder;
  Form form;
  // Reads nothing behind its element's last octet, so the octets that
  // follow in the frame cannot change what it prints.
  bool staysInsideElement;
};

// Seeds name decoders by their index here: append, never reorder.
constexpr DecoderEntry kDecoders[] = {
    {"BearerCapability", velmora::DecodeBearerCapability, Form::VariableLength, true},
    {"LowLayerCompatibility", velmora::DecodeLowLayerCompatibility, Form::VariableLength, true},
    {"HighLayerCompatibility", velmora::DecodeHighLayerCompatibility, Form::VariableLength, true},
    {"Cause", velmora::DecodeCause, Form::VariableLength, true},
    {"ChannelIdentification", velmora::DecodeChannelIdentification, Form::VariableLength, true},
    {"ProgressIndicator", velmora::DecodeProgressIndicator, Form::VariableLength, true},
    {"NotificationIndicator", velmora::DecodeNotificationIndicator, Form::VariableLength, true},
    {"Signal", velmora::DecodeSignal, Form::VariableLength, true},
    {"NetworkSpecificFacilities", velmora::DecodeNetworkSpecificFacilities, Form::VariableLength, true},
    {"TransitNetworkSelection", velmora::DecodeTransitNetworkSelection, Form::VariableLength, true},
    {"UserUser", velmora::DecodeUserUser, Form::VariableLength, true},
    {"CallIdentity", velmora::DecodeCallIdentity, Form::VariableLength, false},
    {"CallState", velmora::DecodeCallState, Form::VariableLength, false},
    {"RestartIndicator", velmora::DecodeRestartIndicator, Form::VariableLength, false},
    {"CallingPartyNumber", velmora::DecodeCallingPartyNumber, Form::VariableLength, false},
    {"CallingPartySubaddress", velmora::DecodeCallingPartySubaddress, Form::VariableLength, false},
    {"CalledPartyNumber", velmora::DecodeCalledPartyNumber, Form::VariableLength, false},
    {"CalledPartySubaddress", velmora::DecodeCalledPartySubaddress, Form::VariableLength, false},
    {"RedirectingNumber", velmora::DecodeRedirectingNumber, Form::VariableLength, false},
    {"MoreData", velmora::DecodeMoreData, Form::SingleOctet, true},
    {"SendingComplete", velmora::DecodeSendingComplete, Form::SingleOctet, true},
    {"CongestionLevel", velmora::DecodeCongestionLevel, Form::SingleOctet, true},
    {"RepeatIndicator", velmora::DecodeRepeatIndicator, Form::SingleOctet, true},
    {"Display", velmora::DecodeDisplay, Form::VariableLength, false},
    {"KeypadFacility", velmora::DecodeKeypadFacility, Form::VariableLength, false},
    {"DateTime", velmora::DecodeDateTime, Form::VariableLength, false},
    {"InformationRate", velmora::DecodeInformationRate, Form::VariableLength, false},
    {"EndToEndTransitDelay", velmora::DecodeEndToEndTransitDelay, Form::VariableLength, false},
    {"TransitDelaySelection", velmora::DecodeTransitDelaySelection, Form::VariableLength, false},
    {"PacketLayerBinaryParameters", velmora::DecodePacketLayerBinaryParameters, Form::VariableLength, false},
    {"PacketLayerWindowSize", velmora::DecodePacketLayerWindowSize, Form::VariableLength, false},
    {"PacketSize", velmora::DecodePacketSize, Form::VariableLength, false},
    {"ClosedUserGroup", velmora::DecodeClosedUserGroup, Form::VariableLength, false},
    {"ReverseChargingIndication", velmora::DecodeReverseChargingIndication, Form::VariableLength, false},
    {"UnknownElement", velmora::DecodeUnknownElement, Form::EitherByBit8, true},
};
constexpr std::size_t kDecoderCount = sizeof kDecoders / sizeof kDecoders[0];

// The table entry of a decoder, or null when it has none.
inline const DecoderEntry* FindDecoder(ElementDecoder decoder) {
  for (const DecoderEntry& entry : kDecoders)
    if (entry.decoder == decoder) return &entry;
  return nullptr;
}

// The count the walk must move on by for the octets at the frame's end.
inline int ExpectedCount(Form form, const Octet* octets, std::size_t size) {
  const bool single = form == Form::SingleOctet || (form == Form::EitherByBit8 && (octets[0] & 0x80) != 0);
  return single ? 1 : (size > 1 ? octets[1] : 0) + 2;
}

struct Result {
  std::string text;
  int count;
};

// Decodes from a fresh heap block of exactly `size` octets.
inline Result Decode(ElementDecoder decoder, const Octet* octets, std::size_t size) {
  const auto frame = ExactCopy<Octet>(octets, size);
  Result result{{}, 0};
  result.text =
      Capture([&](OutputWriter& out) { result.count = decoder(out, ElementOctets(OctetSpan(frame.get(), size))); });
  return result;
}

}  // namespace velmora::fuzz
