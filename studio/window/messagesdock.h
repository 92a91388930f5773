// SPDX-License-Identifier: MIT
#pragma once

#include "studio/window/messagesmodel.h"

#include <QDockWidget>

class QComboBox;
class QLineEdit;
class QToolButton;
class QTreeView;

namespace Studio {

/// The table of messages with its filters. Enter and a double click go to the place of a message.
class MessagesDock : public QDockWidget
{
    Q_OBJECT

public:
    explicit MessagesDock(const Vela::Interface &host, QWidget *parent = nullptr);

    MessagesModel *model();
    QTreeView *view() const;
    /// Goes to the message below or above the current one, round the ends.
    void goOn(int step);

Q_SIGNALS:
    /// \a line and \a column are from 0.
    void placeWanted(const QString &file, unsigned int line, unsigned int column);

private:
    QWidget *makeFilterBar(const Vela::Interface &host);
    QToolButton *makeTypeButton(const Vela::Interface &host, Vela::Message::Type type,
                                const QString &name);
    void activate(const QModelIndex &index);
    void showCounts();
    void listFiles();

    MessagesModel m_model;
    MessagesFilter m_filter;
    QTreeView *m_view;
    QToolButton *m_types[3] = {};
    QComboBox *m_files = nullptr;
    QLineEdit *m_text = nullptr;
};

} // namespace Studio
