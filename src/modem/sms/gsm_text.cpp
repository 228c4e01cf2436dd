// GSM 7-bit default alphabet to ISO 8859-1, and septet unpacking.
#include "modem/sms/gsm_text.h"

namespace nkw::sms {
namespace {

// Characters without an ISO 8859-1 form (the Greek capitals) read as '?'.
// clang-format off
constexpr unsigned char kGsmToText[128] = {
    0x40, 0xA3, 0x24, 0xA5, 0xE8, 0xE9, 0xF9, 0xEC,  // @ £ $ ¥ è é ù ì
    0xF2, 0xC7, 0x0A, 0xD8, 0xF8, 0x0D, 0xC5, 0xE5,  // ò Ç LF Ø ø CR Å å
    '?',  '_',  '?',  '?',  '?',  '?',  '?',  '?',   // Δ _ Φ Γ Λ Ω Π Ψ
    '?',  '?',  '?',  27,   0xC6, 0xE6, 0xDF, 0xC9,  // Σ Θ Ξ ESC Æ æ ß É
    ' ',  '!',  '"',  '#',  0xA4, '%',  '&',  '\'',  // ¤ for the currency sign
    '(',  ')',  '*',  '+',  ',',  '-',  '.',  '/',  '0',  '1',  '2',  '3',  '4',
    '5',  '6',  '7',  '8',  '9',  ':',  ';',  '<',  '=',  '>',  '?',
    0xA1, 'A',  'B',  'C',  'D',  'E',  'F',  'G',  // ¡
    'H',  'I',  'J',  'K',  'L',  'M',  'N',  'O',  'P',  'Q',  'R',  'S',  'T',
    'U',  'V',  'W',  'X',  'Y',  'Z',  0xC4, 0xD6, 0xD1, 0xDC, 0xA7,  // Ä Ö Ñ Ü §
    0xBF, 'a',  'b',  'c',  'd',  'e',  'f',  'g',                    // ¿
    'h',  'i',  'j',  'k',  'l',  'm',  'n',  'o',  'p',  'q',  'r',  's',  't',
    'u',  'v',  'w',  'x',  'y',  'z',  0xE4, 0xF6, 0xF1, 0xFC, 0xE0,  // ä ö ñ ü à
};
// clang-format on

struct Extension {
    uint8_t septet;
    char text;
};

// What an escape selects; every other code after an escape reads as '?'.
constexpr Extension kExtensions[] = {
    {10, '\f'}, {20, '^'}, {40, '{'}, {41, '}'}, {47, '\\'},
    {60, '['},  {61, '~'}, {62, ']'}, {64, '|'},
};

// Septet i starts at bit 7i; its high bits come from the next octet when
// fewer than 7 bits of it lie in the first.
uint8_t septet_at(const uint8_t *pdu, uint8_t start, uint32_t index) {
    uint32_t bit = index * 7;
    uint32_t shift = bit % 8;
    auto first = static_cast<uint8_t>(start + bit / 8);
    uint32_t value = (pdu[first] >> shift) & 0x7F;
    if (shift >= 2) {
        auto second = static_cast<uint8_t>(first + 1);
        value |= (static_cast<uint32_t>(pdu[second]) << (8 - shift)) & 0x7F;
    }
    return static_cast<uint8_t>(value);
}

}  // namespace

char gsm_septet_to_text(uint8_t septet) {
    return static_cast<char>(kGsmToText[septet & 0x7F]);
}

char gsm_extension_to_text(uint8_t septet) {
    for (const Extension &e : kExtensions) {
        if (e.septet == septet) return e.text;
    }
    return '?';
}

int32_t unpack_septets(const uint8_t *pdu, uint8_t start, uint32_t septets, char *out,
                       uint32_t size) {
    uint32_t written = 0;
    for (uint32_t i = 0; i < septets; ++i) {
        uint8_t septet = septet_at(pdu, start, i);
        char text;
        if (septet == kGsmEscape) {
            ++i;
            text = gsm_extension_to_text(septet_at(pdu, start, i));
        } else {
            text = gsm_septet_to_text(septet);
        }
        if (written >= size) return -1;
        out[written++] = text;
    }
    return static_cast<int32_t>(written);
}

}  // namespace nkw::sms
