#pragma once

/// Ends the test program with a message unless it runs in the simulated panel. A test calls this
/// first if it can reach code that writes system files, sets the clock or deletes folders.
void requirePanel();
