// Internal pieces shared by the NV item operations.
#pragma once

#include <cstddef>

#include "nkw_pal/storage.h"

namespace nkw::nv {

inline constexpr const char *kTag = "NVM";

// The protocol-stack value every NVRAM request carries (the whole modem).
inline constexpr int kPsId = 16;

// Inner statuses that reach only the log.
inline constexpr int kApWriteFailed = 704;
inline constexpr int kMdWriteResultFailed = 709;

// The row index of `id` (nkw_pal_nvm_tab_index_get); the end marker is
// logged under the caller's name and comes back as 38.
int index_of(unsigned int id, const char *function = __builtin_FUNCTION(),
             int line = __builtin_LINE());

// The row of a valid index (not 38).
inline const nkw_nvm_item &row(int index) {
    return nkw_nvm_tab[index];
}

// "/data/quarn/" followed by the item's file name, as the production build
// names it; the test build relocates it when opening.
inline constexpr size_t kNvPathSize = 256;
void nv_file_path(const char *file_name, char (&path)[kNvPathSize]);

}  // namespace nkw::nv

namespace nkw::nv {

// The steps behind nkw_pal_nvm_read and nkw_pal_nvm_write; their names are
// the ones their log lines carry.
int nkw_pal_read_nv_md_sync(uint32_t lid, unsigned char *buf, unsigned int len);
int nkw_pal_write_nv_md_sync(uint32_t lid, const unsigned char *data, unsigned int len);
int nkw_pal_read_nv_ap_sync(const char *file_name, unsigned char *buf, unsigned int len);
int nkw_pal_write_nv_ap_sync(const char *file_name, const unsigned char *data, unsigned int len);

}  // namespace nkw::nv
