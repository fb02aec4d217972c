// HostUniforms.h -- what the host tells a shader: the uniforms by all the names that shader authors know them by
#ifndef VORTICADE_HOST_UNIFORMS_H
#define VORTICADE_HOST_UNIFORMS_H

#include <cstdint>
#include <string_view>

enum HostValue {
    VALUE_TIME,       // seconds since the reset
    VALUE_TIME_DELTA, // seconds since the last frame
    VALUE_FRAME,
    VALUE_FRAME_RATE,
    VALUE_RESOLUTION, // width, height, 1; of what the pass draws
    VALUE_MOUSE,      // as iMouse
    VALUE_MOUSE_UNIT, // 0 to 1 across the picture
    VALUE_MOUSE_AT,   // pixels
    VALUE_DATE,       // a fixed day; the seconds of it are the time
    VALUE_SOUND,      // level, 0 to 1
    VALUE_SOUND_SLOW, // the same, calm
    VALUE_SOUND_TIME, // seconds of full level: the level summed up
    VALUE_SEED,       // four numbers 0 to 1, new at every reset
    VALUE_RATE,       // 44100
    VALUE_ZERO,
    VALUE_PASS,  // number of the pass
    VALUE_SIZES, // of the four channels, three numbers each
    VALUES_PLAIN,
    VALUE_PICTURE_SOUND = VALUES_PLAIN, // sampler2D from here
    VALUE_PICTURE_NOISE,
    VALUE_PICTURE_LAST
};

struct HostUniform {
    std::string_view name;
    const char *pszType;  // for the declaration, which is added where a file uses the name without one; null: never
    const char *pszAfter; // what stands behind the name in it
    HostValue eValue;
};

constexpr HostUniform asHostUniform[] = {
    {"iTime", "float", "", VALUE_TIME},
    {"iGlobalTime", "float", "", VALUE_TIME},
    {"iTimeDelta", "float", "", VALUE_TIME_DELTA},
    {"iFrame", "int", "", VALUE_FRAME},
    {"iFrameRate", "float", "", VALUE_FRAME_RATE},
    {"iResolution", "vec3", "", VALUE_RESOLUTION},
    {"iMouse", "vec4", "", VALUE_MOUSE},
    {"iDate", "vec4", "", VALUE_DATE},
    {"iSampleRate", "float", "", VALUE_RATE},
    {"iChannelTime", "float", "[4]", VALUE_ZERO},
    {"iChannelResolution", "vec3", "[4]", VALUE_SIZES},
    {"iChannel0", "sampler2D", "", VALUE_PICTURE_SOUND},
    {"iChannel1", "sampler2D", "", VALUE_PICTURE_NOISE},
    {"iChannel2", "sampler2D", "", VALUE_PICTURE_LAST},
    {"iChannel3", "sampler2D", "", VALUE_PICTURE_NOISE},
    {"iSound", "float", "", VALUE_SOUND},
    {"iSoundSlow", "float", "", VALUE_SOUND_SLOW},
    {"iSoundTime", "float", "", VALUE_SOUND_TIME},
    {"iSoundHistory", "sampler2D", "", VALUE_PICTURE_SOUND},
    {"iNoise", "sampler2D", "", VALUE_PICTURE_NOISE},
    {"iLastFrame", "sampler2D", "", VALUE_PICTURE_LAST},
    {"iSeed", "vec4", "", VALUE_SEED},
    {"TIME", "float", "", VALUE_TIME},
    {"TIMEDELTA", "float", "", VALUE_TIME_DELTA},
    {"FRAMEINDEX", "int", "", VALUE_FRAME},
    {"PASSINDEX", "int", "", VALUE_PASS},
    {"RENDERSIZE", "vec2", "", VALUE_RESOLUTION},
    {"DATE", "vec4", "", VALUE_DATE},
    {"backbuffer", nullptr, "", VALUE_PICTURE_LAST},
    {"time", nullptr, "", VALUE_TIME},
    {"resolution", nullptr, "", VALUE_RESOLUTION},
    {"mouse", nullptr, "", VALUE_MOUSE_UNIT},
    {"u_time", nullptr, "", VALUE_TIME},
    {"u_resolution", nullptr, "", VALUE_RESOLUTION},
    {"u_mouse", nullptr, "", VALUE_MOUSE_AT},
};

#endif
