// SPDX-License-Identifier: MIT
#include "image/colorquantizer.h"

#include "image/pixels_p.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace Vela {

/// Counts and sums have 64 bits: those of 32 would be full at 2^24 white pixels.
struct OctreeNode
{
    bool isLeaf = false;
    quint64 pixelCount = 0;
    quint64 redSum = 0;
    quint64 greenSum = 0;
    quint64 blueSum = 0;
    quint64 alphaSum = 0;
    OctreeNode *next = nullptr; ///< in the list of the reducible nodes of a level, or of free nodes
    OctreeNode *children[8] = {};
};

static RGBA meanOf(const OctreeNode &leaf)
{
    if (leaf.pixelCount == 0)
        return {0, 0, 0, 255};
    const auto mean = [&leaf](quint64 sum) { return quint8(sum / leaf.pixelCount); };
    return {mean(leaf.redSum), mean(leaf.greenSum), mean(leaf.blueSum), mean(leaf.alphaSum)};
}

/// Owns the nodes of a tree. Nearly every new leaf makes others free, so those are used again.
class OctreeNodes
{
public:
    OctreeNode *take()
    {
        if (!m_free) {
            m_blocks.push_back(std::make_unique<OctreeNode[]>(BlockSize));
            for (int i = 0; i < BlockSize; ++i)
                give(&m_blocks.back()[std::size_t(i)]);
        }
        OctreeNode *node = m_free;
        m_free = node->next;
        *node = OctreeNode();
        return node;
    }

    void give(OctreeNode *node)
    {
        node->next = m_free;
        m_free = node;
    }

private:
    static constexpr int BlockSize = 256;

    std::vector<std::unique_ptr<OctreeNode[]>> m_blocks;
    OctreeNode *m_free = nullptr;
};

ColorQuantizer::ColorQuantizer(int maxColors, int colorBits)
    : m_nodes(std::make_unique<OctreeNodes>())
    , m_maxColors(qBound(1, maxColors, 256))
    , m_colorBits(qBound(1, colorBits, 8))
{
}

ColorQuantizer::~ColorQuantizer() = default;

bool ColorQuantizer::processImage(const QImage &image)
{
    const QImage colors = image.convertToFormat(QImage::Format_ARGB32);
    const int width = colors.width();
    for (int y = 0; y < colors.height(); ++y) {
        const QRgb *row = constPixels<QRgb>(colors, y);
        for (int x = 0; x < width; ++x) {
            addColor(&m_root, qRed(row[x]), qGreen(row[x]), qBlue(row[x]), qAlpha(row[x]),
                     m_colorBits, 0, &m_leafCount, m_reducibleNodes);
            while (m_leafCount > m_maxColors)
                reduceTree(m_colorBits, &m_leafCount, m_reducibleNodes);
        }
    }
    return true;
}

void ColorQuantizer::getColorTable(RGBA (&table)[256])
{
    std::fill(std::begin(table), std::end(table), RGBA());
    int index = 0;
    if (m_root)
        getPaletteColors(m_root, table, &index);
}

int ColorQuantizer::colorCount()
{
    return m_leafCount;
}

void ColorQuantizer::addColor(OctreeNode **node, int red, int green, int blue, int alpha,
                              int colorBits, int level, int *leafCount, OctreeNode **reducibleNodes)
{
    for (;; ++level) {
        if (!*node) {
            *node = m_nodes->take();
            if (level == colorBits) {
                (*node)->isLeaf = true;
                ++*leafCount;
            } else {
                (*node)->next = reducibleNodes[level];
                reducibleNodes[level] = *node;
            }
        }
        if ((*node)->isLeaf)
            break;
        const int shift = 7 - level;
        const int child = (red >> shift & 1) * 4 + (green >> shift & 1) * 2 + (blue >> shift & 1);
        node = &(*node)->children[child];
    }
    OctreeNode &leaf = **node;
    ++leaf.pixelCount;
    leaf.redSum += quint64(red);
    leaf.greenSum += quint64(green);
    leaf.blueSum += quint64(blue);
    leaf.alphaSum += quint64(alpha);
}

void ColorQuantizer::reduceTree(int colorBits, int *leafCount, OctreeNode **reducibleNodes)
{
    int level = colorBits - 1;
    while (level > 0 && !reducibleNodes[level])
        --level;
    OctreeNode *node = reducibleNodes[level];
    if (!node)
        return;
    reducibleNodes[level] = node->next;
    // All children are leaves: the lists of deeper levels are empty.
    for (OctreeNode *&child : node->children) {
        if (!child)
            continue;
        node->pixelCount += child->pixelCount;
        node->redSum += child->redSum;
        node->greenSum += child->greenSum;
        node->blueSum += child->blueSum;
        node->alphaSum += child->alphaSum;
        m_nodes->give(child);
        child = nullptr;
        --*leafCount;
    }
    node->isLeaf = true;
    ++*leafCount;
}

void ColorQuantizer::getPaletteColors(const OctreeNode *node, RGBA (&table)[256], int *index)
{
    if (node->isLeaf) {
        if (*index < 256)
            table[(*index)++] = meanOf(*node);
        return;
    }
    for (const OctreeNode *child : node->children) {
        if (child)
            getPaletteColors(child, table, index);
    }
}

} // namespace Vela
