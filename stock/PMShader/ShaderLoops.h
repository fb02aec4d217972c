// ShaderLoops.h -- finds the loops of a shader that might not end
#ifndef VORTICADE_SHADER_LOOPS_H
#define VORTICADE_SHADER_LOOPS_H

#include "ShaderTokens.h"

// Where a loop's condition stands in the text; an empty one has iEnd equal to iStart.
struct LoopCondition {
    size_t iStart, iEnd;
};

// The conditions of all while loops, and of all for loops but those that count by themselves to a number. These, too,
// where they are nested, or call each other, so that they may take more than dPlainMost steps. A graphics card that is
// caught in a loop takes the whole desktop with it, the software renderer this program.
std::vector<LoopCondition> FindOpenLoops(const std::vector<ShaderToken> &aToken, double dPlainMost);
// The token at which a macro is made from a piece of a loop, or could make one by joining words: loops that nobody
// finds. The number of tokens if there is none.
size_t FindHiddenLoop(const std::vector<ShaderToken> &aToken);

#endif
