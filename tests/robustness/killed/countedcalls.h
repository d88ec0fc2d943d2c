#pragma once

/// From now on every call that changes files is counted, and the process is killed, as by a power
/// cut, in place of the one with the number @p number, from 1 on; 0 ends the count. A program that
/// uses this calls the kernel through functions of its own.
void killAtCall(int number);
