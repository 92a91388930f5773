// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/propertiesmodel.h"

#include <QDockWidget>

class QLabel;
class QTreeView;

namespace Vela {
class PropertyItem;
}

namespace Studio {

/// The properties of the current file, or of what is chosen in it.
class PropertiesDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit PropertiesDock(QWidget *parent = nullptr);

    /// Shows the properties of \a item, which must live until the next call; null shows none.
    void setItem(Vela::PropertyItem *item);
    PropertiesModel *model();
    QTreeView *view() const;

private:
    PropertiesModel m_model;
    QTreeView *m_view;
    QLabel *m_nothing;
};

} // namespace Studio
