// StockFiles.h -- names of files as modules get them and as the system wants them
#ifndef VORTICADE_STOCK_FILES_H
#define VORTICADE_STOCK_FILES_H

#include <string>

// UTF-8 of a wide text of at most nMost characters. Halves of surrogate pairs that stand alone become '?'.
inline std::string NarrowPath(const char16_t *psz, size_t nMost)
{
    std::string path;
    for (size_t i = 0; i < nMost && psz[i]; i++) {
        char32_t ch = psz[i];
        const bool bHigh = ch >= 0xD800 && ch < 0xDC00,
                   bPair = bHigh && i + 1 < nMost && (psz[i + 1] & 0xFC00) == 0xDC00;
        if (bPair)
            ch = 0x10000 + ((ch - 0xD800) << 10) + (char32_t)(psz[++i] - 0xDC00);
        if (ch < 0x80) {
            path += (char)ch;
        } else if (ch >= 0xD800 && ch < 0xE000) {
            path += '?';
        } else {
            const int nMore = ch < 0x800 ? 1 : ch < 0x10000 ? 2 : 3;
            path += (char)((0xF0 << (3 - nMore) & 0xFF) | (int)(ch >> (6 * nMore)));
            for (int k = nMore - 1; k >= 0; k--)
                path += (char)(0x80 | (ch >> (6 * k) & 0x3F));
        }
    }
    return path;
}

inline std::string NameOfPath(const std::string &path)
{
    return path.substr(path.find_last_of('/') + 1);
}

#endif
