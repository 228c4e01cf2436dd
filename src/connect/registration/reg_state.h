// Maps the modem's 3GPP registration state to the state callers get.
#pragma once

#include <cstdint>

#include "nkw_pal/connect.h"

namespace nkw::connect {

struct RegStateMapping {
    uint8_t modem;
    uint32_t returned;
};

// "Unknown" reads as not registered; roaming moves down to close the gap.
inline constexpr RegStateMapping kRegStates[] = {
    {0, NKW_PAL_REG_NOT_REGISTERED}, {1, NKW_PAL_REG_HOME},           {2, NKW_PAL_REG_SEARCHING},
    {3, NKW_PAL_REG_DENIED},         {4, NKW_PAL_REG_NOT_REGISTERED}, {5, NKW_PAL_REG_ROAMING},
};

// False for a state the table does not hold (*mapped untouched).
inline bool map_reg_state(uint8_t modem, uint32_t *mapped) {
    for (const RegStateMapping &entry : kRegStates) {
        if (entry.modem == modem) {
            *mapped = entry.returned;
            return true;
        }
    }
    return false;
}

}  // namespace nkw::connect
