// SPDX-License-Identifier: MIT
#pragma once

#include "frame/object.h"
#include "project/projectfile.h"

#include <QList>
#include <QObject>

class QAction;

namespace Vela {

class Interface;
class Project;
class RegExp;

/// A mode of the main window that acts on the central workspace. Main thread only.
///
/// The host decides which editor is current and calls activate() and deactivate(). An editor is
/// made once, by the host or an engine extension, and lives as long as the host's window.
class VELA_EXPORT Editor : public QObject, public Object
{
    Q_OBJECT

public:
    /// Takes the installed host.
    explicit Editor(QObject *parent = nullptr);
    ~Editor() override;

    /// Returns the action that selects this editor.
    virtual QAction *action() const = 0;
    /// Returns the editor's key.
    virtual const char *name() const = 0;
    /// Returns a mask whose bits are the host's to read.
    virtual unsigned int areas() const = 0;
    /// Called by the host when this editor becomes current, and when it no longer is.
    virtual void activate();
    virtual void deactivate();
    /// Reads the settings again.
    virtual void reconfig();
    /// Takes all texts anew from their translators.
    virtual void retranslate() = 0;
    /// Another engine is current; \a hasEngine is false for none.
    virtual void engineSwitched(bool hasEngine);
    virtual void projectSwitched(Project *project);
    /// Searches the current file; the meaning of the flags is that of the file's search().
    virtual QList<ProjectFile::SearchResult> find(const RegExp &expression, unsigned int flags) = 0;
    virtual void replace(const QList<ProjectFile::SearchResult> &results, const QString &text) = 0;

    /// Destroys the editor.
    void release() override;

    bool isActive() const
    {
        return m_active;
    }
    /// Asks the host to make this editor current, unless it is active.
    void switchToThis();
    /// Emit the signals of the same names; subclasses connect these to what they enable.
    void setVisible(bool isVisible);
    void setWritable(bool isWritable);

Q_SIGNALS:
    void visible(bool changed);
    void writable(bool changed);

protected:
    Interface *interfaceObject() const
    {
        return m_interface;
    }
    void setActive(bool active)
    {
        m_active = active;
    }

private:
    Interface *m_interface;
    bool m_active = false;
};

} // namespace Vela
