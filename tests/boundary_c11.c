/* boundary_c11.c -- one header of the module boundary, by itself and twice, in C11; compiling it is the test */
#include BOUNDARY_HEADER
#include BOUNDARY_HEADER

/* Not empty, as ISO C asks of a file. */
extern int boundary_c11;
