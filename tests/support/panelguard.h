#pragma once

/// Ends the test program with a plain message unless it runs in the simulated panel. A test that
/// can reach code that writes system files, sets the clock or deletes folders calls this first.
void requirePanel();
