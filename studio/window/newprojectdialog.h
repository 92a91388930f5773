// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>
#include <memory>

namespace Ui {
class NewProjectDialog;
}

namespace Vela {
class Engine;
}

namespace Studio {

/// Asks for the name, the place and the engine of a new project.
class NewProjectDialog : public QDialog
{
    Q_OBJECT

public:
    /// \a engines must not be empty; \a place is the folder proposed.
    NewProjectDialog(const QList<Vela::Engine *> &engines, const QString &place, QWidget *parent);
    ~NewProjectDialog() override;

    QString name() const;
    /// Returns the folder in which the project's own folder shall stand.
    QString place() const;
    /// Returns the project's own folder, which is empty or does not exist yet.
    QString folder() const;
    Vela::Engine *engine() const;

private:
    void browse();
    void check();

    QList<Vela::Engine *> m_engines;
    std::unique_ptr<Ui::NewProjectDialog> m_ui;
};

} // namespace Studio
