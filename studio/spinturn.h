// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QTimer>

class QWidget;

namespace Studio {

/// Tells when the user has finished turning a spinning field, so that one turn is one change: an
/// arrow or a key held down until it is let go, a turn of the wheel until it rests. Anything that
/// the user does elsewhere ends the turn first, so that the change goes where it was meant to go.
class SpinTurn : public QObject
{
    Q_OBJECT

public:
    explicit SpinTurn(QWidget *box);

    /// Called for each step of the field.
    void step();
    bool isActive() const;
    /// Forgets the turn without a signal.
    void cancel();

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    void ended();

private:
    void ownEvent(QEvent *event);
    void end();

    QWidget *m_box;
    QTimer m_rest;
    bool m_active = false;
    bool m_held = false;
};

} // namespace Studio
