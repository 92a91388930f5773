// SPDX-License-Identifier: MIT
// A module as extension authors write them: it registers two extensions under one name.
#include "engine/extensionmanager.h"

namespace {

class ToyFormat : public Vela::Extension
{
public:
    explicit ToyFormat(const char *identifier)
        : m_identifier(identifier)
    {
    }
    void release() override
    {
        delete this;
    }
    Type type() const override
    {
        return ArchiveFormat;
    }
    const char *format() const override
    {
        return "toy";
    }
    const char *identifier() const override
    {
        return m_identifier;
    }

private:
    const char *m_identifier;
};

} // namespace

extern "C" Q_DECL_EXPORT void registerExtension(Vela::ExtensionManager *manager)
{
    for (const char *identifier : {"first", "second"}) {
        auto *format = new ToyFormat(identifier);
        if (!manager->add(format))
            delete format;
    }
}
