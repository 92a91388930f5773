// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

class QTreeView;

namespace Vela {
namespace Private {

/// Brings a tree view back to a vertical scroll position. A model reset takes the position away
/// and the view lays itself out only later, so reset() is to be called one event round after it.
class ResetScrollPos : public QObject
{
    Q_OBJECT

public:
    ResetScrollPos(QTreeView *view, int position);

    /// Scrolls the view, if it still lives, and ends this object with deleteLater().
    void reset();

private:
    QPointer<QTreeView> m_view;
    int m_position;
};

} // namespace Private
} // namespace Vela
