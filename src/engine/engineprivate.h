// SPDX-License-Identifier: MIT
#pragma once

#include "engine/engineinstances.h"

class QWidget;
class QXmlStreamReader;
class QXmlStreamWriter;

namespace sol {
class state;
}

namespace Vela {

class Debugger;
class Emulator;
class Engine;
class EnginePrivateData;

/// One engine's instances and options, kept together in one XML file in the host's data folder.
/// Extensions derive from Engine, not from this class.
class VELA_EXPORT EnginePrivate : public EngineInstances
{
    Q_OBJECT

public:
    explicit EnginePrivate(const QString &engineName);
    ~EnginePrivate() override;

    /// Fills the engine's page of the host's settings dialog. The default adds nothing.
    virtual void registerCustomOptions(QWidget *page);
    /// Adds the engine's own script classes. The default adds none.
    virtual void registerScriptClasses(sol::state &state);
    /// Returns what runs the real engine under control, or null.
    virtual Debugger *debugger();
    /// Returns what runs the game inside the host, or null.
    virtual Emulator *emulator();

    /// Reads the configuration file. A missing file is no failure. Tells the user about a file
    /// that cannot be opened or read and returns false; what was read until then stays.
    bool load();
    bool load(QXmlStreamReader *reader);
    /// Writes the configuration file. Tells the user and returns false, with the old file as it
    /// was, if that fails or if a text holds a character that XML cannot.
    bool save();
    bool save(QXmlStreamWriter *writer);

    /// Returns the engine's option \a key, else the host's, else \a defaultValue.
    QVariant option(const QString &key, const QVariant &defaultValue) const;
    /// Stores an option of the engine; the host's settings stay untouched.
    void setOption(const QString &key, const QVariant &value);

    /// Returns this object as the engine that it is.
    Engine *publicEngine();

private:
    std::unique_ptr<EnginePrivateData> d;
};

} // namespace Vela
