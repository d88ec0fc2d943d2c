#pragma once

/// Counts the calls that change files, from now on. Kills the process, as a power cut would,
/// instead of making call @p number, which counts from 1. 0 stops counting. A program that links
/// this gets its own versions of these functions of the C library.
void killAtCall(int number);
