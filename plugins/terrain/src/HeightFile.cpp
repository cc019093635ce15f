// SPDX-License-Identifier: MIT
#include "HeightFile.h"

#include <bit>
#include <cstring>
#include <sys/mman.h>

namespace ig {

namespace {

constexpr std::uint64_t PAGE = 4096;
constexpr int COARSEST = 32; ///< cells along the longer edge of the last copy, at most

/// Why a header is none that this program can go by; "" when it is.
std::string findFault(const HeightHeader& header, std::uint64_t size) {
    const HeightHeader good;
    if (size < sizeof header || std::memcmp(header.purpose, good.purpose, sizeof good.purpose) != 0)
        return "holds no heights of a built world";
    if (header.byte_order != good.byte_order) return "was built on a machine of another byte order";
    if (header.version != good.version)
        return "was built by another version of this program: build the world anew";
    constexpr std::int64_t MOST = std::int64_t{1} << 31; // samples: as many bytes as 8 GiB
    if (header.columns < 2 || header.rows < 2 ||
        std::int64_t{header.columns} * header.rows > MOST || !(header.spacing_longitude > 0) ||
        !(header.spacing_latitude > 0) || !std::isfinite(header.west) ||
        !std::isfinite(header.north) || header.parent < -1 ||
        (header.parent >= 0 && (header.within[2] < 1 || header.within[3] < 1)))
        return "is damaged: build the world anew";
    const std::uint64_t needed = HeightLayout(header.columns, header.rows).size;
    if (header.size != needed || size != needed)
        return "has " + std::to_string(size) + " bytes in place of " + std::to_string(needed) +
               ": build the world anew";
    return {};
}

} // namespace

HeightLayout::HeightLayout(int columns, int rows) : samples{columns, rows, PAGE}, size(PAGE) {
    const auto add = [this](int width, int height, std::uint64_t element) {
        const Part part{width, height, size};
        const std::uint64_t bytes =
            element * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
        size += (bytes + PAGE - 1) / PAGE * PAGE;
        return part;
    };
    samples = add(columns, rows, sizeof(float));
    for (int shift = 1; (std::max(columns, rows) - 1) >> (shift - 1) > COARSEST; shift++)
        copies.push_back(
            add(((columns - 1) >> shift) + 1, ((rows - 1) >> shift) + 1, sizeof(float)));
    int width = ((columns - 2) >> BLOCK_SHIFT) + 1, height = ((rows - 2) >> BLOCK_SHIFT) + 1;
    while (true) {
        blocks.push_back(add(width, height, sizeof(HeightRange)));
        if (width == 1 && height == 1) break;
        width = (width + 1) / 2;
        height = (height + 1) / 2;
    }
}

HeightHeader HeightHeader::of(const TerrainGrid& grid) {
    HeightHeader header;
    header.columns = grid.columns;
    header.rows = grid.rows;
    header.west = grid.west;
    header.north = grid.north;
    header.spacing_longitude = grid.spacing_longitude;
    header.spacing_latitude = grid.spacing_latitude;
    header.lowest = grid.lowest;
    header.highest = grid.highest;
    header.has_holes = grid.has_holes;
    header.parent = grid.parent;
    const TerrainGrid::Cells& within = grid.within;
    const std::int32_t cells[] = {within.column, within.row, within.columns, within.rows};
    std::copy(std::begin(cells), std::end(cells), header.within);
    header.size = HeightLayout(grid.columns, grid.rows).size;
    return header;
}

std::unique_ptr<const HeightFile> HeightFile::open(const std::string& path, std::string& failure) {
    auto file = MappedFile::open(path, failure);
    if (!file) return nullptr;
    HeightHeader header;
    std::memcpy(&header, file->getBytes(), std::min<std::uint64_t>(sizeof header, file->getSize()));
    failure = findFault(header, file->getSize());
    if (!failure.empty()) return nullptr;
    return std::unique_ptr<const HeightFile>(new HeightFile(std::move(file), header));
}

HeightFile::HeightFile(std::unique_ptr<const MappedFile> file, const HeightHeader& header)
    : m_file(std::move(file)), m_layout(header.columns, header.rows) {
    m_shape.columns = header.columns;
    m_shape.rows = header.rows;
    m_shape.west = header.west;
    m_shape.north = header.north;
    m_shape.spacing_longitude = header.spacing_longitude;
    m_shape.spacing_latitude = header.spacing_latitude;
    m_shape.lowest = header.lowest;
    m_shape.highest = header.highest;
    m_shape.has_holes = header.has_holes != 0;
    m_shape.parent = header.parent;
    m_shape.within = {header.within[0], header.within[1], header.within[2], header.within[3]};
    m_shape.heights = reinterpret_cast<const float*>(m_file->getBytes() + m_layout.samples.begin);
}

float HeightFile::getHeight(int column, int row, int step) const {
    int shift = std::countr_zero(static_cast<unsigned>(step));
    shift = std::min(shift, static_cast<int>(m_layout.copies.size()));
    if (shift == 0) return m_shape.getHeight(column, row);
    const HeightLayout::Part& part = m_layout.copies[static_cast<std::size_t>(shift - 1)];
    return reinterpret_cast<const float*>(
        m_file->getBytes() +
        part.begin)[static_cast<std::ptrdiff_t>(row >> shift) * part.columns + (column >> shift)];
}

void HeightFile::fetch(const Window& window) const {
    const auto width = static_cast<std::uint64_t>(m_shape.columns);
    const auto at = [&](int column, int row) {
        return m_layout.samples.begin +
               sizeof(float) * (static_cast<std::uint64_t>(row) * width + column);
    };
    // All rows are on their way before the first is waited for.
    for (int row = window.row; row < window.end_row; row++) {
        const std::uint64_t begin = at(window.column, row) / PAGE * PAGE;
        advise(begin, at(window.end_column, row), MADV_WILLNEED);
    }
    for (int row = window.row; row < window.end_row; row++)
        for (std::uint64_t byte = at(window.column, row); byte < at(window.end_column, row);
             byte += PAGE)
            static_cast<void>(
                *const_cast<const volatile unsigned char*>(m_file->getBytes() + byte));
}

void HeightFile::release(const std::vector<Window>& keep) const {
    const auto width = static_cast<std::uint64_t>(m_shape.columns);
    int row = m_shape.rows, end_row = 0;
    for (const Window& window : keep) {
        row = std::min(row, window.row);
        end_row = std::max(end_row, window.end_row);
    }
    std::uint64_t kept_to = m_layout.samples.begin;
    for (; row < end_row; row++)
        for (const Window& window : keep) {
            if (row < window.row || row >= window.end_row) continue;
            const std::uint64_t begin =
                m_layout.samples.begin + sizeof(float) * static_cast<std::uint64_t>(row) * width;
            releaseBytes(kept_to,
                         begin + sizeof(float) * static_cast<std::uint64_t>(window.column));
            kept_to = std::max(kept_to, begin + sizeof(float) *
                                                    static_cast<std::uint64_t>(window.end_column));
        }
    releaseBytes(kept_to, m_layout.size);
}

/// Whole pages that lie in between.
void HeightFile::releaseBytes(std::uint64_t begin, std::uint64_t end) const {
    begin = (begin + PAGE - 1) / PAGE * PAGE;
    end = end / PAGE * PAGE;
    if (begin < end) advise(begin, end, MADV_DONTNEED);
}

void HeightFile::advise(std::uint64_t begin, std::uint64_t end, int advice) const {
    madvise(const_cast<unsigned char*>(m_file->getBytes()) + begin, end - begin, advice);
}

} // namespace ig
