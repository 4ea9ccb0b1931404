/// Virtual key codes by the platform's names for them: physical positions, named after what a US keyboard has there.
#pragma once

#include "platform/EventServices.hpp"

inline constexpr CGKeyCode kVK_ANSI_A = 0x00;
inline constexpr CGKeyCode kVK_ANSI_S = 0x01;
inline constexpr CGKeyCode kVK_ANSI_F = 0x03;
inline constexpr CGKeyCode kVK_ANSI_Z = 0x06;
inline constexpr CGKeyCode kVK_ANSI_X = 0x07;
inline constexpr CGKeyCode kVK_ANSI_C = 0x08;
inline constexpr CGKeyCode kVK_ANSI_V = 0x09;
inline constexpr CGKeyCode kVK_ANSI_B = 0x0B;
inline constexpr CGKeyCode kVK_ANSI_Q = 0x0C;
inline constexpr CGKeyCode kVK_ANSI_Y = 0x10;
inline constexpr CGKeyCode kVK_ANSI_2 = 0x13;
inline constexpr CGKeyCode kVK_ANSI_U = 0x20;
inline constexpr CGKeyCode kVK_ANSI_I = 0x22;
inline constexpr CGKeyCode kVK_Return = 0x24;
inline constexpr CGKeyCode kVK_ANSI_L = 0x25;
inline constexpr CGKeyCode kVK_ANSI_Quote = 0x27;
inline constexpr CGKeyCode kVK_ANSI_N = 0x2D;
inline constexpr CGKeyCode kVK_Delete = 0x33;
inline constexpr CGKeyCode kVK_Escape = 0x35;
inline constexpr CGKeyCode kVK_ForwardDelete = 0x75;
inline constexpr CGKeyCode kVK_F2 = 0x78;
inline constexpr CGKeyCode kVK_LeftArrow = 0x7B;
inline constexpr CGKeyCode kVK_RightArrow = 0x7C;
