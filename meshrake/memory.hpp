#pragma once

// Lets the program's arrays lie on large pages and stay with the process when they are freed: a
// page fault for every 4096 bytes would cost more than reading the values into them.
void prepareMemory();
