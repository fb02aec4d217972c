#version 300 es
#extension GL_OES_x : enable
#define L(n) for (int i = 0; i < n; i++)
in vec2 uv;
void main() { while (true) { } do x(); while (a); for (;;) ; L(4) gl_FragColor = 1.0e-3; }
#include "a"
