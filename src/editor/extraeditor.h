// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "frame/object.h"

#include <QObject>

namespace Vela {

class Interface;
class Project;

/// A side panel beside the main editor, such as the palettes or the organizer.
class VELA_EXPORT ExtraEditor : public QObject, public Object
{
    Q_OBJECT

public:
    /// Takes the installed host.
    explicit ExtraEditor(QObject *parent = nullptr);
    ~ExtraEditor() override;

    /// Returns the panel's key.
    virtual const char *name() const = 0;
    virtual QString displayName() const = 0;
    virtual bool isModified() const;
    virtual void reconfig();
    virtual void engineSwitched(bool hasEngine);
    virtual void activate();
    virtual void deactivate();
    virtual void projectSwitched(Project *project);
    virtual void retranslate();

    bool isActive() const
    {
        return m_active;
    }

Q_SIGNALS:
    void modified();

protected:
    virtual void contentsChanged();

public:
    /// Destroys the panel.
    void release() override;

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
