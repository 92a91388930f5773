// SPDX-License-Identifier: MIT
#pragma once

#include "studio/session/unsavedtexts.h"

#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QThreadPool>
#include <QTimer>

namespace Vela {
class CodeDocument;
class ParentProject;
class ProjectFile;
} // namespace Vela

namespace Studio {

/// Keeps the unsaved definition texts of a project against a crash: each is written soon after it
/// was changed, and forgotten when it is saved, closed, or as it was read again. The texts are
/// copied on the main thread and written on another.
class TextAutosave : public QObject
{
    Q_OBJECT

public:
    /// Texts go below \a folder. One is written when nothing was changed for \a rest milliseconds,
    /// and \a longest milliseconds after the first change all the same.
    explicit TextAutosave(const QString &folder, int rest = 2000, int longest = 10000);
    /// Ends what is being written; what was unsaved was given up.
    ~TextAutosave() override;

    QString folder() const;
    /// Follows the texts of another project, which must live until the next call, and forgets
    /// those of the one before. Null follows none, and so does a project that is not on the disk.
    void setParentProject(Vela::ParentProject *parent);
    /// Returns the project's root folder as UnsavedText names it.
    static QString projectName(const Vela::ParentProject &parent);

    /// Gives a document of the project the text that was left of it, as one step of undo behind
    /// which it is modified. The left text is kept as this program's from then on.
    void recover(const UnsavedText &left, Vela::CodeDocument &document);

Q_SIGNALS:
    /// Something could not be kept. Told once.
    void failed(const QString &reason);

private:
    /// What is known of a document.
    struct Followed
    {
        QString file;    ///< relative to the root
        QString project; ///< under which its text is kept; empty while none is
        FileState disk;
    };

    void follow(Vela::ProjectFile *file);
    void onRead(Vela::ProjectFile *file);
    void onClosed(Vela::ProjectFile *file);
    void onChanged(Vela::CodeDocument *document);
    void onModificationChanged(Vela::CodeDocument *document, bool isModified);
    void noteDisk(Vela::CodeDocument *document);
    void writeSome();
    void write(Vela::CodeDocument *document);
    void forget(Vela::CodeDocument *document);
    void unfollow(Vela::CodeDocument *document);
    void tell(const QString &reason);

    const QString m_folder;
    const int m_rest;
    const int m_longest;
    UnsavedTexts m_store; // of the pool's one thread, while that is at work
    QThreadPool m_pool;
    QPointer<Vela::ParentProject> m_parent;
    QHash<Vela::CodeDocument *, Followed> m_texts;
    QSet<Vela::CodeDocument *> m_changed;
    QTimer m_timer;
    QElapsedTimer m_firstChange;
    bool m_isToldOf = false;
};

} // namespace Studio
