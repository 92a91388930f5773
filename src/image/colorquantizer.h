// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "image/rgba.h"

#include <memory>

class QImage;

namespace Vela {

struct OctreeNode;
class OctreeNodes;

/// Reduces the colours of images to a table: an octree whose leaves are merged as soon as there are
/// too many (M. Gervautz and W. Purgathofer, 1988).
class VELA_EXPORT ColorQuantizer
{
public:
    /// \a maxColors is from 1 to 256; \a colorBits, the levels of the tree, from 1 to 8.
    ColorQuantizer(int maxColors, int colorBits);
    virtual ~ColorQuantizer();

    /// Adds the colours of an image to those of the images before. Returns true.
    bool processImage(const QImage &image);
    /// Fills the table with the means of the colours, alpha included, in the tree's order; what is
    /// left of it becomes zero.
    void getColorTable(RGBA (&table)[256]);
    /// Returns the number of entries that getColorTable() fills.
    int colorCount();

protected:
    void addColor(OctreeNode **node, int red, int green, int blue, int alpha, int colorBits,
                  int level, int *leafCount, OctreeNode **reducibleNodes);
    void reduceTree(int colorBits, int *leafCount, OctreeNode **reducibleNodes);
    void getPaletteColors(const OctreeNode *node, RGBA (&table)[256], int *index);

private:
    ColorQuantizer(const ColorQuantizer &) = delete;
    ColorQuantizer &operator=(const ColorQuantizer &) = delete;

    std::unique_ptr<OctreeNodes> m_nodes; ///< owns the tree
    OctreeNode *m_root = nullptr;
    int m_leafCount = 0;
    OctreeNode *m_reducibleNodes[8] = {};
    int m_maxColors;
    int m_colorBits;
};

} // namespace Vela
