/* nkw_pal codec utilities: text and number conversions, Base64, BCD, GSM 7-bit, checksums. */
#ifndef NKW_PAL_CODEC_H
#define NKW_PAL_CODEC_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

NKW_PAL_END_DECLS

#endif /* NKW_PAL_CODEC_H */
