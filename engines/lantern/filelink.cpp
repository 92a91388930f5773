// SPDX-License-Identifier: MIT
#include "lantern/filelink.h"

namespace Lantern {

FileLink::FileLink(int start, int end, const QString &path, ParserContext &context)
    : CodeLink(start, end)
    , m_path(path)
    , m_context(context)
{
}

void FileLink::activate()
{
    m_context.openFile(m_path);
}

} // namespace Lantern
