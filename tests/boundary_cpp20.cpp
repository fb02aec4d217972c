// boundary_cpp20.cpp -- one header of the module boundary, by itself and twice, in C++20; compiling it is the test
#include BOUNDARY_HEADER
#include BOUNDARY_HEADER
