// SPDX-License-Identifier: MIT
#include "frame/resetscrollpos.h"

#include <QScrollBar>
#include <QTreeView>

namespace Vela {
namespace Private {

ResetScrollPos::ResetScrollPos(QTreeView *view, int position)
    : m_view(view)
    , m_position(position)
{
}

void ResetScrollPos::reset()
{
    if (m_view)
        m_view->verticalScrollBar()->setValue(m_position);
    deleteLater();
}

} // namespace Private
} // namespace Vela
