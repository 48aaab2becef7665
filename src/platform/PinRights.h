#pragma once

// Whether this program may use the hardware PWM and the SPI, which the libraries reach through the computer's memory:
// a right that pins do not need. Without it the pin library ends the program in the middle of a PWM call, so it is
// asked first. Looked up anew each time. Defined by platform_pi and by platform_virtual.
bool MayUsePwmAndSpi();
// Why not, and what to do: behind what was not done.
inline constexpr char WHY_NO_PWM_AND_SPI[] = "this program has no right to it (run scripts/install-pi.sh again)";
