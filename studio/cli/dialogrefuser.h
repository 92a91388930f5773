// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace Studio {

/// Answers every dialog of the application where nobody sits: its text goes to standard error and
/// it is answered with No, or else rejected.
class DialogRefuser : public QObject
{
    Q_OBJECT

public:
    explicit DialogRefuser(QObject *parent = nullptr);

    /// Returns whether there was a dialog. What it asked for was not done.
    bool hasRefused() const;

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    bool m_refused = false;
};

} // namespace Studio
