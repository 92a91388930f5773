// SPDX-License-Identifier: MIT
#include "studio/window/notelabel.h"

#include <QApplication>
#include <QEvent>

namespace Studio {

namespace {

/// Share of the text's colour; with a usual palette the contrast stays above 4.5 to 1.
constexpr qreal TextShare = 0.66;

int mixed(int text, int ground)
{
    return qRound(TextShare * text + (1 - TextShare) * ground);
}

} // namespace

NoteLabel::NoteLabel(QWidget *parent)
    : NoteLabel(QString(), parent)
{
}

NoteLabel::NoteLabel(const QString &text, QWidget *parent)
    : QLabel(text, parent)
{
    blend();
}

void NoteLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        blend();
}

void NoteLabel::blend()
{
    const QColor text = QApplication::palette().color(QPalette::WindowText);
    const QColor ground = QApplication::palette().color(QPalette::Window);
    const QColor blended(mixed(text.red(), ground.red()), mixed(text.green(), ground.green()),
                         mixed(text.blue(), ground.blue()));
    // Setting the palette comes back as a change of it.
    if (palette().color(QPalette::WindowText) == blended)
        return;
    QPalette own;
    own.setColor(QPalette::WindowText, blended);
    own.setColor(QPalette::Text, blended);
    setPalette(own);
}

} // namespace Studio
