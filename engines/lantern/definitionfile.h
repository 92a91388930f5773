// SPDX-License-Identifier: MIT
#pragma once

#include "lantern/document.h"
#include "lantern/settings.h"

#include <functional>

namespace Lantern {

class SettingCode;

/// The main file of a project or of a whole game: its definition text with the settings in it.
///
/// Beside the properties of every document it has one for each setting, "section.key"; of settings
/// that may stand more than once the second is "section.key.2", and so on. Setting one changes the
/// value in the text and nothing around it.
class DefinitionFile : public Document
{
public:
    explicit DefinitionFile(Scope scope);

    const Settings &settings() const;
    /// Returns the files that the text names, each once, spelled as the archive does.
    const QVector<FileEntry> &files() const;
    /// Sets what is called when the settings may have changed.
    void setListener(const std::function<void()> &listener);
    /// Looks on the disk again for the files that the text names.
    void lookForFiles();
    /// Adds an error at the place where the text names a file.
    void reportAt(const FileEntry &entry, const QString &text);

    QStringList propertyNames() const override;
    QVariant property(const QString &name) const override;
    void setProperty(const QString &name, const QVariant &value) override;

protected:
    void updateChecks(bool read) override;

private:
    void spellFiles(bool read);
    void listFiles(QVector<Vela::Message> &messages);
    void nameSettings() const;
    SettingCode *settingOf(const QString &name) const;

    Settings m_settings;
    QVector<FileEntry> m_named;   // as the text spells them
    QVector<FileEntry> m_spelled; // the same, as the archive does
    QVector<FileEntry> m_files;
    std::function<void()> m_listener;

    // The settings by their properties, made when they are asked for.
    mutable bool m_areNamed = false;
    mutable QStringList m_propertyNames;
    mutable QHash<QString, SettingCode *> m_settingOf;
};

} // namespace Lantern
