#include "bilingual/bilingual_file.h"

#include <algorithm>
#include <cstdint>

namespace tool::bilingual
{

size_t BilingualFile::lineOf(check::Range place) const
{
    const auto behind = std::upper_bound(lines.begin(), lines.end(), std::pair(place.begin, SIZE_MAX));
    return behind == lines.begin() ? 0 : behind[-1].second;
}

} // namespace tool::bilingual
