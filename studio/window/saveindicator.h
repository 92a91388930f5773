// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QWidget>

class QLabel;
class QProgressBar;

namespace Studio {

class SaveProgress;

/// Tells in the status bar what is being saved, once that has lasted long enough to be read.
class SaveIndicator : public QWidget
{
    Q_OBJECT

public:
    /// \a progress must outlive the indicator.
    explicit SaveIndicator(const SaveProgress &progress, QWidget *parent = nullptr);

private:
    void follow();

    const SaveProgress &m_progress;
    QLabel *m_text;
    QProgressBar *m_bar;
    QTimer m_showLater;
};

} // namespace Studio
