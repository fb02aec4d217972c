// OrderedRows.h -- tables that are indexed by an enumeration
#pragma once

#include <cstddef>

// Whether each row names the number at which it stands, to be asserted behind the table.
template <typename Row, size_t nRows, typename Key>
consteval bool RowsStandInOrder(const Row (&asRow)[nRows], Key Row::*pKey)
{
    for (size_t i = 0; i < nRows; i++)
        if (asRow[i].*pKey != static_cast<Key>(i))
            return false;
    return true;
}
