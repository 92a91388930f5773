// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace Studio {

class Colors;

/// Lists the colours of texts and pictures, changes them and gives them back their defaults.
class ColorsPage : public QWidget
{
    Q_OBJECT

public:
    explicit ColorsPage(Colors &colors, QWidget *parent = nullptr);

protected:
    void changeEvent(QEvent *event) override;

private:
    void fill();
    void showRow(QTreeWidgetItem *item);
    void showRows();
    void choose();
    void resetCurrent();
    void updateButtons();
    QString currentKey() const;

    Colors &m_colors;
    QTreeWidget *m_list;
    QPushButton *m_choose;
    QPushButton *m_reset;
};

} // namespace Studio
