// The running executable's base name, used as the system-log ident.
#pragma once

#include <cstdint>

// Copies the base name (with terminator) into `name` when it is not null and
// returns its length. Gives 0 when the name cannot be read, has fewer than 2
// characters, or is longer than `size`; `name` must hold size + 1 bytes.
int32_t GetSelfProcessName(char *name, int32_t size);
