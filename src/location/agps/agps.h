// Steps of nkw_pal_agps_config.
#pragma once

// The EPO/QEPO setting: 0, 1 or 2, anything else becomes 3. 0 or -1.
int nkw_pal_agps_epo_qepo_config(int value);
// Writes that setting into the GNSS service's two configuration files. 0 or -1.
int nkw_pal_write_file(int value);
