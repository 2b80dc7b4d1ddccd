#pragma once

// Marks what libswiftgate-host.so offers to modules and to the executable. Everything else stays
// inside the library it was compiled into.
#define SG_API __attribute__((visibility("default")))
