// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

class QLabel;
class QPushButton;
class QTreeWidget;

namespace Studio {

class Settings;

/// Lists the questions that the user does not want to see any more, with what they answer instead,
/// and brings them back.
class QuestionsPage : public QWidget
{
    Q_OBJECT

public:
    explicit QuestionsPage(Settings &settings, QWidget *parent = nullptr);

private:
    void fill();
    void askAgain();
    void askAllAgain();

    Settings &m_settings;
    QTreeWidget *m_questions;
    QLabel *m_nothing;
    QPushButton *m_again;
    QPushButton *m_allAgain;
};

} // namespace Studio
