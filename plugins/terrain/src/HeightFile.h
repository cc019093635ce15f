// SPDX-License-Identifier: MIT
#pragma once

#include "MappedFile.h"
#include "plugins/terrain/TerrainGrid.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace ig {

/// Where the parts of a height field lie in its file, by the size of its grid: a page that says
/// what the file holds, the samples row by row from the north, the copies of every second, fourth,
/// ... sample along columns and rows, and the bounds of blocks of 4 × 4, 8 × 8, ... cells. Each
/// part begins at a page of memory. Numbers have the byte order of the machine that built it.
struct HeightLayout {
    static constexpr int BLOCK_SHIFT = 2; ///< cells along the finest block, as a power of two: its
                                          ///< bounds take an eighth of the samples' memory
    struct Part {
        int columns, rows;
        std::uint64_t begin; ///< in the file, bytes
    };
    HeightLayout(int columns, int rows); ///< at least 2 each

    Part samples;
    std::vector<Part> copies; ///< the first holds every second sample
    std::vector<Part> blocks; ///< from the finest to a single one
    std::uint64_t size = 0;   ///< of the file, bytes
};

/// What the first page of such a file says.
struct HeightHeader {
    char purpose[24] = "built world: heights";
    std::uint32_t version = 1;
    std::uint32_t byte_order = 0x01020304;
    std::int32_t columns = 0, rows = 0;
    double west = 0, north = 0, spacing_longitude = 0, spacing_latitude = 0;
    float lowest = 0, highest = 0;
    std::uint32_t has_holes = 0;
    std::int32_t parent = -1;              ///< as `TerrainGrid` has it
    std::int32_t within[4] = {0, 0, 0, 0}; ///< column, row, columns, rows
    std::uint64_t size = 0;                ///< of the whole file, bytes

    static HeightHeader of(const TerrainGrid& grid);
};

/// A height field's file, mapped: what has been read goes when `release` says so. Any thread may
/// read.
class HeightFile {
public:
    /// Null with the reason in `failure` when it is none, damaged, or of another version or kind of
    /// machine.
    static std::unique_ptr<const HeightFile> open(const std::string& path, std::string& failure);
    const TerrainGrid& getShape() const { return m_shape; } ///< with its samples, no overview
    const HeightLayout& getLayout() const { return m_layout; }
    const HeightRange* getBlocks(const HeightLayout::Part& part) const {
        return reinterpret_cast<const HeightRange*>(m_file->getBytes() + part.begin);
    }
    /// A sample whose column and row are multiples of `step`, a power of two from 2.
    float getHeight(int column, int row, int step) const;

    /// A rectangle of samples; ends are beyond it.
    struct Window {
        int column, end_column, row, end_row;
    };
    /// Has what lies in the window read, and waits until it is.
    void fetch(const Window& window) const;
    /// Gives the memory back that holds anything but these windows, which are in order of their
    /// columns. What is looked at again is there again.
    void release(const std::vector<Window>& keep) const;

private:
    HeightFile(std::unique_ptr<const MappedFile> file, const HeightHeader& header);
    void advise(std::uint64_t begin, std::uint64_t end, int advice) const;
    void releaseBytes(std::uint64_t begin, std::uint64_t end) const;

    std::unique_ptr<const MappedFile> m_file;
    HeightLayout m_layout;
    TerrainGrid m_shape;
};

} // namespace ig
