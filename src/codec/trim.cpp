// Trimming a repeated character from either end of a text.
#include <cstring>

#include "nkw_pal/codec.h"

extern "C" {

char *nkw_pal_str_trim_left(char *text, char ch) {
    if (text == nullptr) return nullptr;
    while (*text != '\0' && *text == ch) ++text;
    return text;
}

char *nkw_pal_str_trim_right(char *text, char ch) {
    if (text == nullptr) return nullptr;
    size_t len = std::strlen(text);
    // The first character always stays; an empty text has nothing to look at.
    for (size_t i = len; i > 1 && text[i - 1] == ch; --i) text[i - 1] = '\0';
    return text;
}

char *nkw_pal_str_trim(char *text, char ch) {
    return nkw_pal_str_trim_left(nkw_pal_str_trim_right(text, ch), ch);
}

}  // extern "C"
