// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/options.h"

#include "engine/engine.h"
#include "engine/engineextension.h"

namespace Lantern {

/// The Lantern engine. docs/lantern.md tells the files that it reads.
class Engine : public Vela::Engine
{
    Q_OBJECT

public:
    Engine();

    /// Returns the name of the file that marks a whole game.
    static QString gameFileName();

    QString queryString(StringType what, unsigned int argument) const override;
    QMap<int, QString> singleFileFilters() const override;
    Vela::ProjectFile *createFile(int type, Vela::Project *project) override;
    bool canOpen(const QString &path) const override;
    Vela::ParentProject *openParentProject(const QString &path, QString *error) override;
    Vela::Project *openProject(Vela::ParentProject *parent, const QString &path,
                               QString *error) override;
    QString createParentProject(const QString &folder, const QString &name,
                                QString *error) override;
    /// Fills a page, which gets a layout if it has none, with a form of the options.
    void registerCustomOptions(QWidget *page) override;

private:
    void optionChanged(const QString &key);

    Options m_options{*this};
};

/// What makes the engine known to the host.
class EngineExtension : public Vela::EngineExtension
{
public:
    const char *format() const override;
    const char *identifier() const override;
    Vela::Engine *engine() override;
    QList<Vela::Editor *> createEditors(const QList<Vela::Workspace *> &workspaces) override;
    void release() override;

private:
    Engine m_engine;
};

} // namespace Lantern
