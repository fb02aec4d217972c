// BaseTypes.h -- short names of the fixed-width types
#pragma once

#include <cstddef>
#include <cstdint>

using u8 = std::uint8_t;
using u16 = std::uint16_t;
using u32 = std::uint32_t;
using u64 = std::uint64_t;
using i32 = std::int32_t;
using i64 = std::int64_t;
using f32 = float;
using f64 = double;

static_assert(sizeof(f32) == 4 && sizeof(void *) == 8);

constexpr u32 ALL_ONES = 0xFFFFFFFFu;
constexpr u32 NAME_CHARS = 260; // characters of a path or name field, the terminating 0 included

using NameText = char16_t[NAME_CHARS];
