// SPDX-License-Identifier: MIT
#pragma once

#include "ig/app/Renderer.h"

/// Small copies of pictures, side by side in one: three in a row, in the order taken.
class ContactSheet {
public:
    static constexpr int COLUMNS = 3;
    static constexpr int WIDTH = 426; ///< of a copy, pixels; smaller pictures keep their size

    void add(const ig::Picture& picture);
    bool isEmpty() const { return m_copies.empty(); }
    /// All of them; the cells are as large as the first one's copy.
    ig::Picture compose() const;

private:
    std::vector<ig::Picture> m_copies;
};
