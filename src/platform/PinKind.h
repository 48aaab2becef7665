#pragma once

// Whether this program was linked with the Pi's own pin libraries. False: every pin is an array element, and nothing
// on a machine moves however busy the window looks. Defined by platform_pi and by platform_virtual.
bool PinsAreReal();
