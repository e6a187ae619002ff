// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <algorithm>

namespace ek {

/// A half-open rectangle of device pixels: Right and Bottom lie outside.
struct Rect {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;

    int Width() const { return Right - Left; }
    int Height() const { return Bottom - Top; }
    bool IsEmpty() const { return Right <= Left || Bottom <= Top; }
    bool Contains(int x, int y) const { return x >= Left && x < Right && y >= Top && y < Bottom; }
    Rect Intersected(const Rect& other) const
    {
        return {std::max(Left, other.Left), std::max(Top, other.Top), std::min(Right, other.Right),
                std::min(Bottom, other.Bottom)};
    }
    bool operator==(const Rect&) const = default;
};

} // namespace ek
