/* nkw_pal SMS: the decoded message record and the GSM/CDMA PDU decoders. */
#ifndef NKW_PAL_SMS_H
#define NKW_PAL_SMS_H

#include "common.h"

NKW_PAL_BEGIN_DECLS

NKW_PAL_END_DECLS

#endif /* NKW_PAL_SMS_H */
