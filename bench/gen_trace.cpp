// Writes the benchmark's deterministic trace log (trace_generator.h) of a
// chosen size; with "calls", its calls form.
//
//   velmora_gen_trace SIZE_MB OUTPUT [calls]
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "trace_generator.h"

int main(int argc, char** argv) {
  const bool calls = argc == 4 && std::strcmp(argv[3], "calls") == 0;
  if (argc != 3 && !calls) {
    std::fprintf(stderr, "usage: velmora_gen_trace SIZE_MB OUTPUT [calls]\n");
    return 64;
  }
  const unsigned long long target = std::strtoull(argv[1], nullptr, 10) * 1000ULL * 1000ULL;
  std::FILE* out = std::fopen(argv[2], "wb");
  if (out == nullptr) {
    std::perror(argv[2]);
    return 73;
  }
  velmora::bench::TraceGenerator trace(calls);
  unsigned long long written = 0;
  while (written < target) {
    const std::string line = trace.NextLine();
    std::fwrite(line.data(), 1, line.size(), out);
    written += line.size();
  }
  return std::fclose(out) == 0 ? 0 : 74;
}
