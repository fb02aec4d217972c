// Assert.cpp -- stops the program at an impossible state
#include "platform/Assert.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

void AssertionFailed(const char *pszExpression, const char *pszSource, int nLine)
{
    const char *pszSlash = std::strrchr(pszSource, '/');
    std::fprintf(stderr, "vorticade: assertion failed: %s (%s, line %d)\n", pszExpression,
                 pszSlash ? pszSlash + 1 : pszSource, nLine);
    std::abort();
}
