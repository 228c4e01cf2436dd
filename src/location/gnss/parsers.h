// The notification parsers behind nkw_pal_gnss_at_client_parser.
#pragma once

// "+ELCSNMEA": the quoted NMEA payload into the global location record.
bool nkw_pal_gnss_at_gnss_nmea_notify_parser(char **cursor);
// "+ELCSNMEAEND": the end of one epoch.
bool nkw_pal_gnss_at_gnss_nmea_end_notify_parser(char **cursor);
