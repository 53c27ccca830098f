#pragma once
// A deterministic trace log for the benchmarks: about half frame lines
// (every Q.931 message type, with the elements switches send, link frames
// among them), the rest ordinary log lines. In its calls form, the messages
// form short calls instead, a few at a time, each with a call reference of
// its own: answered, busy or rejected.
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace velmora::bench {

using Octets = std::vector<unsigned>;

// Q.931 messages behind a 4-octet LAPD I-frame header.
inline const std::vector<Octets> kMessages = {
    // SETUP: sending complete, bearer capability, channel id, calling/called numbers, display
    {0x08, 0x01, 0x05, 0x05, 0xA1, 0x04, 0x03, 0x80, 0x90, 0xA3, 0x18, 0x03, 0xA1, 0x83, 0x81, 0x6C, 0x0C,
     0x21, 0x83, 0x30, 0x38, 0x39, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x70, 0x0B, 0xC1, 0x30, 0x33,
     0x30, 0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x28, 0x05, 0x41, 0x6C, 0x69, 0x63, 0x65},
    // SETUP, data call with V.110 rate adaption, low/high layer compatibility
    {0x08, 0x02, 0x00, 0x07, 0x05, 0x04, 0x05, 0x88, 0x90, 0x21, 0x48, 0xD4, 0x18, 0x01, 0x89,
     0x7C, 0x03, 0x88, 0x90, 0xA1, 0x7D, 0x02, 0x91, 0x81, 0x70, 0x04, 0x81, 0x35, 0x36, 0x37},
    {0x08, 0x01, 0x85, 0x02, 0x18, 0x01, 0x89},                                            // CALL PROCEEDING
    {0x08, 0x01, 0x85, 0x01, 0x1E, 0x02, 0x81, 0x88, 0x34, 0x01, 0x01},                    // ALERTING
    {0x08, 0x01, 0x85, 0x03, 0x1E, 0x02, 0x82, 0x88},                                      // PROGRESS
    {0x08, 0x01, 0x85, 0x07, 0x29, 0x05, 0x1A, 0x03, 0x0E, 0x09, 0x0F, 0x18, 0x01, 0x89},  // CONNECT
    {0x08, 0x01, 0x05, 0x0F},                                                              // CONNECT ACKNOWLEDGE
    {0x08, 0x01, 0x05, 0x0D, 0x18, 0x01, 0x89, 0x34, 0x01, 0x00},                          // SETUP ACKNOWLEDGE
    {0x08, 0x01, 0x05, 0x45, 0x08, 0x02, 0x80, 0x90, 0x1E, 0x02, 0x82, 0x88},              // DISCONNECT
    {0x08, 0x01, 0x85, 0x4D, 0x08, 0x02, 0x82, 0x90},                                      // RELEASE
    {0x08, 0x01, 0x05, 0x5A, 0x08, 0x04, 0x82, 0xD8, 0x88, 0x05, 0x28, 0x03, 0x42, 0x75,
     0x73},                                                                    // RELEASE COMPLETE, diagnostics
    {0x08, 0x01, 0x05, 0x5A, 0x08, 0x03, 0x80, 0x91, 0x9E},                    // RELEASE COMPLETE, user busy
    {0x08, 0x01, 0x85, 0x7D, 0x08, 0x03, 0x80, 0xE2, 0x4D, 0x14, 0x01, 0x0A},  // STATUS
    {0x08, 0x01, 0x05, 0x75},                                                  // STATUS ENQUIRY
    {0x08, 0x01, 0x05, 0x7B, 0x2C, 0x02, 0x31, 0x32, 0xA1},                    // INFORMATION
    {0x08, 0x01, 0x85, 0x6E, 0x27, 0x01, 0x80},                                // NOTIFY
    {0x08, 0x00, 0x46, 0x18, 0x03, 0xA9, 0x83, 0x81, 0x79, 0x01, 0x80},        // RESTART
    {0x08, 0x00, 0x4E, 0x18, 0x03, 0xA9, 0x83, 0x81, 0x79, 0x01, 0x80},        // RESTART ACKNOWLEDGE
    {0x08, 0x01, 0x05, 0x25, 0x10, 0x02, 0x31, 0x32},                          // SUSPEND
    {0x08, 0x01, 0x85, 0x2D},                                                  // SUSPEND ACKNOWLEDGE
    {0x08, 0x01, 0x85, 0x21, 0x08, 0x02, 0x80, 0x84},                          // SUSPEND REJECT
    {0x08, 0x01, 0x05, 0x26, 0x10, 0x02, 0x31, 0x32},                          // RESUME
    {0x08, 0x01, 0x85, 0x2E, 0x18, 0x01, 0x8A},                                // RESUME ACKNOWLEDGE
    {0x08, 0x01, 0x85, 0x22, 0x08, 0x02, 0x80, 0xD3},                          // RESUME REJECT
    {0x08, 0x01, 0x05, 0x20, 0x7E, 0x04, 0x04, 0x68, 0x69, 0x21, 0xA0},        // USER INFORMATION
    {0x08, 0x01, 0x85, 0x79, 0xBF, 0x08, 0x02, 0x80, 0xAF},                    // CONGESTION CONTROL
    {0x08, 0x01, 0x05, 0x60, 0x00, 0x01},                                      // SEGMENT
};

inline const std::vector<Octets> kLinkFrames = {
    {0x02, 0x81, 0x01, 0x04},                          // RR
    {0x00, 0x81, 0x01, 0x06},                          // RR
    {0x02, 0x81, 0x05, 0x02},                          // RNR
    {0x00, 0x81, 0x7F},                                // SABME
    {0x00, 0x81, 0x73},                                // UA
    {0x00, 0x81, 0x53},                                // DISC
    {0x00, 0x81, 0x0F},                                // DM
    {0xFE, 0xFF, 0x03, 0x0F, 0x2C, 0x51, 0x01, 0xFF},  // UI, TEI request
};

// The calls of the calls form: messages of kMessages by index, with the
// call reference flag (1: sent towards the caller).
struct CallStep {
  unsigned message;
  unsigned flag;
};
inline const std::vector<std::vector<CallStep>> kCallScripts = {
    {{0, 0}, {2, 1}, {3, 1}, {5, 1}, {6, 0}, {8, 0}, {9, 1}, {10, 0}},  // answered, cleared by the caller
    {{0, 0}, {2, 1}, {8, 1}, {9, 0}, {11, 1}},                          // busy
    {{0, 0}, {11, 1}},                                                  // rejected
};
inline constexpr unsigned kCallsAtOnce = 4;

inline const char* const kLogLines[] = {
    "L1: INFO 4 received, layer 1 active",
    "CC: call state change U0 -> U1",
    "CC: B-channel 1 connected to port 3",
    "MM: timer T303 started (4 s)",
    "MM: timer T310 stopped",
    "L2: T203 expired, sending RR poll",
    "SYS: trace buffer 42% used",
    "CC: call 0x05 released, duration 00:02:17",
};

// Hands out the trace's lines, each with its line end, always the same ones.
class TraceGenerator {
 public:
  explicit TraceGenerator(bool calls = false) : calls_(calls) {}

  std::string NextLine() {
    millis_ += random_() % 500;
    char stamp[64];
    std::snprintf(stamp, sizeof stamp, "%05u 2026-03-14 %02llu:%02llu:%02llu.%03llu ", ++record_ % 100000,
                  millis_ / 3600000 % 24, millis_ / 60000 % 60, millis_ / 1000 % 60, millis_ % 1000);
    std::string line = stamp;
    if (random_() % 2 == 0) {
      line += kLogLines[random_() % 8];
    } else {
      const bool isMessage = random_() % 3 != 0;
      Octets octets;
      if (isMessage) {
        const unsigned sendSequence = static_cast<unsigned>(random_() % 64) << 1;
        const unsigned receiveSequence = static_cast<unsigned>(random_() % 64) << 1;
        octets = {random_() % 2 ? 0x00U : 0x02U, 0x81U, sendSequence, receiveSequence};
        const Octets message = calls_ ? NextCallMessage() : kMessages[random_() % kMessages.size()];
        octets.insert(octets.end(), message.begin(), message.end());
      } else {
        octets = kLinkFrames[random_() % kLinkFrames.size()];
      }
      line += "**** D-CH ";
      line += random_() % 2 ? "TX" : "RX";
      line += " HDLC:" + std::to_string(octets.size()) + "  | ";
      char cell[8];
      for (const unsigned octet : octets) {
        std::snprintf(cell, sizeof cell, "0x%02x ", octet & 0xFF);
        line += cell;
      }
      if (line.size() < 84) line.resize(84, ' ');
    }
    line += '\n';
    return line;
  }

 private:
  struct ActiveCall {
    unsigned reference;
    const std::vector<CallStep>* script;
    std::size_t step;
  };

  // The next message of a call under way, or the SETUP of a new one.
  Octets NextCallMessage() {
    if (active_.size() < kCallsAtOnce && (active_.empty() || random_() % 3 == 0)) {
      active_.push_back({nextReference_, &kCallScripts[random_() % kCallScripts.size()], 0});
      nextReference_ = nextReference_ % 127 + 1;
    }
    const std::size_t which = random_() % active_.size();
    ActiveCall& call = active_[which];
    const CallStep step = (*call.script)[call.step];
    Octets message = kMessages[step.message];
    message[2] = (step.flag << 7) | call.reference;
    if (++call.step == call.script->size()) active_.erase(active_.begin() + static_cast<long>(which));
    return message;
  }

  bool calls_;
  std::vector<ActiveCall> active_;
  unsigned nextReference_ = 1;
  std::mt19937 random_{20261122};
  unsigned record_ = 0;
  unsigned long long millis_ = 9ULL * 3600 * 1000;
};

}  // namespace velmora::bench
