// SPDX-License-Identifier: MIT
#include "ContactSheet.h"

#include <algorithm>

using namespace ig;

namespace {

/// Each pixel of the copy is the mean of those that it stands for.
Picture shrink(const Picture& picture, int width) {
    Picture copy;
    copy.width = std::min(width, picture.width);
    copy.height = std::max(picture.height * copy.width / std::max(picture.width, 1), 1);
    for (int y = 0; y < copy.height; y++)
        for (int x = 0; x < copy.width; x++) {
            const int x0 = x * picture.width / copy.width;
            const int x1 = std::max((x + 1) * picture.width / copy.width, x0 + 1);
            const int y0 = y * picture.height / copy.height;
            const int y1 = std::max((y + 1) * picture.height / copy.height, y0 + 1);
            int sum[3] = {};
            for (int sy = y0; sy < y1; sy++)
                for (int sx = x0; sx < x1; sx++)
                    for (int c = 0; c < 3; c++)
                        sum[c] += picture.at(sx, sy)[c];
            for (const int s : sum)
                copy.rgb.push_back(static_cast<std::uint8_t>(s / ((x1 - x0) * (y1 - y0))));
        }
    return copy;
}

} // namespace

void ContactSheet::add(const Picture& picture) {
    if (picture.width > 0 && picture.height > 0) m_copies.push_back(shrink(picture, WIDTH));
}

Picture ContactSheet::compose() const {
    Picture sheet;
    if (m_copies.empty()) return sheet;
    const int width = m_copies.front().width, height = m_copies.front().height;
    const int count = static_cast<int>(m_copies.size());
    const int columns = std::min(count, COLUMNS), rows = (count + COLUMNS - 1) / COLUMNS;
    sheet.width = columns * width;
    sheet.height = rows * height;
    sheet.rgb.resize(3 * static_cast<std::size_t>(sheet.width) * sheet.height);
    for (int i = 0; i < count; i++) {
        const Picture& copy = m_copies[i];
        const int left = i % COLUMNS * width, top = i / COLUMNS * height;
        for (int y = 0; y < std::min(copy.height, height); y++)
            std::copy_n(copy.at(0, y), 3 * std::min(copy.width, width),
                        sheet.rgb.begin() + 3 * ((top + y) * sheet.width + left));
    }
    return sheet;
}
