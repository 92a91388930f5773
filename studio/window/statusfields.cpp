// SPDX-License-Identifier: MIT
#include "studio/window/statusfields.h"

#include <QStatusBar>
#include <QToolButton>

namespace Studio {

StatusFields::StatusFields(QStatusBar *bar)
    : QObject(bar)
{
    const QString names[FieldCount] = {tr("Position"), tr("Errors"), tr("Encoding or engine")};
    const QString tips[FieldCount] = {tr("Go to a line"), tr("Go to the next error"),
                                      tr("Change the encoding, or see the engine")};
    for (int field = 0; field < FieldCount; ++field) {
        auto *button = new QToolButton;
        button->setObjectName(QStringLiteral("statusField%1").arg(field));
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::TabFocus);
        button->setToolTip(tips[field]);
        button->setAccessibleName(names[field]);
        button->setEnabled(false);
        connect(button, &QToolButton::clicked, this, [this, field] { Q_EMIT activated(field); });
        bar->addPermanentWidget(button);
        m_buttons[field] = button;
    }
}

void StatusFields::setText(int field, const QString &text)
{
    if (field < 0 || field >= FieldCount)
        return;
    m_buttons[field]->setText(text);
    m_buttons[field]->setAccessibleDescription(text);
    m_buttons[field]->setEnabled(!text.isEmpty());
}

QToolButton *StatusFields::button(Field field) const
{
    return m_buttons[field];
}

} // namespace Studio
