#include "core/globals.h"

namespace velmora {

thread_local OutputWriter* g_outputFile = nullptr;
thread_local bool g_frameFound = false;
thread_local int g_linkSetupPending = 0;

}  // namespace velmora
