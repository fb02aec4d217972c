// Assert.h -- stops the program at an impossible state
#pragma once

// Prints the expression and the source name on standard error and aborts. Never compiled out: it guards states
// that would go on to destroy a user's work. For our own mistakes and failed core allocations only.
#define VD_ASSERT(expression) ((expression) ? (void)0 : AssertionFailed(#expression, __FILE__, __LINE__))

[[noreturn]] void AssertionFailed(const char *pszExpression, const char *pszSource, int nLine);
