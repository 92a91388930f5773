// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/definition.h"
#include "lantern/settings.h"
#include "lantern/textfile.h"

#include <QHash>
#include <functional>

namespace Lantern {

/// The main file of a project or of a whole game: its definition text with the settings in it.
///
/// Beside the properties of every text file it has one for each setting, "section.key"; of settings
/// that may stand more than once the second is "section.key.2", and so on. Setting one changes the
/// value in the text and nothing around it.
class DefinitionFile : public TextFile
{
public:
    explicit DefinitionFile(Scope scope);

    const Settings &settings() const;
    /// Returns the files that the text names, each once, spelled as the archive does.
    const QVector<FileEntry> &files() const;
    /// Sets what is called when the settings may have changed.
    void setListener(const std::function<void()> &listener);
    /// Adds an error at the place where the text names a file.
    void reportAt(const FileEntry &entry, const QString &text);

    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

protected:
    void textChanged() override;

private:
    void nameProperties();

    const Scope m_scope;
    Definition m_definition;
    Settings m_settings;
    QVector<FileEntry> m_files;
    QStringList m_propertyNames;
    QHash<QString, int> m_settingOf;
    std::function<void()> m_listener;
};

/// Returns \a files spelled as the archive does, each once. Those that are missing are marked, and
/// what is there but no file is left out. Appends a warning to \a messages about both, and about
/// what is named twice.
QVector<FileEntry> spelledFiles(Vela::Archive &archive, const QString &folder,
                                const QVector<FileEntry> &files, QVector<Vela::Message> &messages);

} // namespace Lantern
