// SPDX-License-Identifier: MIT
#pragma once

#include "frame/export.h"
#include "frame/object.h"

#include <QObject>

class QWidget;

namespace Vela {

/// The central view of the window, shared by the editors that work on it. The host makes it and
/// shows its widget.
class VELA_EXPORT Workspace : public QObject, public Object
{
    Q_OBJECT

public:
    explicit Workspace(QObject *parent = nullptr);
    ~Workspace() override;

    /// Returns the workspace's key.
    virtual const char *name() const = 0;
    virtual QWidget *widget() const = 0;
    /// Another engine is current; \a hasEngine is false for none.
    virtual void engineSwitched(bool hasEngine);
    virtual void activate();
    virtual void deactivate();
    /// Reads the settings again.
    virtual void reconfig() = 0;
    virtual void retranslate() = 0;

    bool isActive() const
    {
        return m_active;
    }

public Q_SLOTS:
    /// The user clicked on the last of the status fields.
    virtual void statusClicked();
    virtual void zoomActual() = 0;
    virtual void zoomFit() = 0;
    virtual void zoomIn() = 0;
    virtual void zoomOut() = 0;

public:
    /// Destroys the workspace.
    void release() override;

protected:
    void setActive(bool active)
    {
        m_active = active;
    }

private:
    bool m_active = false;
};

} // namespace Vela
