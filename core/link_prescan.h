#pragma once
// The cheap look at a stretch of trace that a parallel run needs: what it
// does to the SABME/DISC link memory, without decoding anything.
#include <string_view>

namespace velmora {

enum class LinkEffect { None, Set, Clear };

// SABME sets the memory, DISC clears it; any other piece leaves it alone.
LinkEffect LinkEffectOfPiece(std::string_view piece);

// The effect of the last SABME or DISC among the pieces of `text`.
LinkEffect LinkEffectOfText(std::string_view text);

}  // namespace velmora
