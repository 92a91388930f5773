// SPDX-License-Identifier: MIT
#include "code/contactboxcode.h"

namespace Vela {

ContactBoxCode::ContactBoxCode(const QTextBlock &block, CodeNode *previous)
    : CodeNode(HitBox, block, previous)
{
}

ContactBoxesCode::ContactBoxesCode(FrameCode *frame, ContactBoxCode::BoxType boxType)
    : m_frame(frame)
    , m_boxType(boxType)
{
}

ContactBoxesCode::~ContactBoxesCode() = default;

} // namespace Vela
