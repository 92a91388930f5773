// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/recovery.h"
#include "studio/session/unsavedtexts.h"
#include "studio/window/recoverydialog.h"

#include <QObject>
#include <memory>

namespace Vela {
class CodeDocument;
}

namespace Studio {

class Host;
class ProjectCommands;
class TextAutosave;

/// Offers what a crash left of the open project: texts that were not saved, and what interrupted
/// saves had written.
class RecoveryOffer : public QObject
{
    Q_OBJECT

public:
    /// All must outlive this object.
    RecoveryOffer(Host &host, ProjectCommands &commands, TextAutosave &autosave, QWidget *window);

    /// Looks in the background for what is left, and offers that if there is something. The offer
    /// waits until no other dialog is open.
    void begin();

Q_SIGNALS:
    /// A file, relative to the root, has a content that was recovered.
    void recovered(const QString &path);

private:
    struct Left
    {
        QList<InterruptedSave> saves;
        std::shared_ptr<LeftTexts> texts; // holds them while they are offered
    };

    void show(const Left &left);
    RecoveryItem itemOf(const InterruptedSave &save);
    RecoveryItem itemOf(const UnsavedText &text);
    RecoveryItem::Preview previewOf(const UnsavedText &text) const;
    bool recoverSave(const InterruptedSave &save, QString *error);
    bool recoverText(const UnsavedText &text, QString *error);
    QString closedProjectOf(const QString &path) const;
    bool isInPlace(const UnsavedText &text) const;
    void readAgain(const QString &path);
    Vela::CodeDocument *documentAt(const QString &path) const;
    QString absoluteName(const UnsavedText &text) const;

    Host &m_host;
    ProjectCommands &m_commands;
    TextAutosave &m_autosave;
    QWidget *m_window;
};

} // namespace Studio
