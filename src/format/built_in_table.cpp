#include "format/conversion_record.h"

// Constants have internal linkage unless declared before: kelto.h does that for all of these.
const int singleCharList[] = {KT_ARG_CHARACTER, KT_ARG_END};
const int utf8StrList[] = {KT_ARG_UTF8, KT_ARG_END};
const int ucs2StrList[] = {KT_ARG_UCS2, KT_ARG_END};
const int signedIntList[] = {KT_ARG_SIGNED, KT_ARG_END};
const int unsignedIntList[] = {KT_ARG_UNSIGNED, KT_ARG_END};
const int doubleList[] = {KT_ARG_DOUBLE, KT_ARG_END};

// The order is that of Flag_t, and records of one first letter stand together.
// clang-format off
KTFormatter builtInFormList[18] = {
    {"d", nullptr, 1, signedIntList, formatInteger},
    {"DND", nullptr, 1, ucs2StrList, formatDN},
    {"DNS", nullptr, 1, ucs2StrList, formatDN},
    {"DT", nullptr, 1, utf8StrList, formatDateTime},
    {"D", nullptr, 1, utf8StrList, formatDateTime},
    {"T", nullptr, 1, utf8StrList, formatDateTime},
    {"u", nullptr, 1, unsignedIntList, formatUnsigned},
    {"U", nullptr, 1, ucs2StrList, formatUCS2Str},
    {"o", nullptr, 1, unsignedIntList, formatOctHex},
    {"x", nullptr, 1, unsignedIntList, formatOctHex},
    {"X", nullptr, 1, unsignedIntList, formatOctHex},
    {"f", nullptr, 1, doubleList, formatDouble},
    {"c", nullptr, 1, singleCharList, formatChar},
    {"s", nullptr, 1, utf8StrList, formatUTF8Str},
    {"E", nullptr, 1, utf8StrList, formatError},
    {"EID", nullptr, 1, unsignedIntList, formatEID},
    {"IP", nullptr, 1, utf8StrList, formatIP},
    {nullptr, nullptr, 0, nullptr, nullptr},
};
// clang-format on

formTable builtInFormTable = {
    true,
    //  a  b   c  d   e   f  g  h   i  j  k  l  m  n  o  p  q  r   s  t  u  v  w   x  y  z
    {0, 0, 13, 1, 15, 12, 0, 0, 17, 0, 0, 0, 0, 0, 9, 0, 0, 0, 14, 6, 7, 0, 0, 10, 0, 0},
    builtInFormList,
    nullptr,
    nullptr,
};
