// SPDX-License-Identifier: MIT
#include "lantern/streamcodec.h"

namespace Lantern {

void StreamCodec::release()
{
}

bool StreamCodec::encodeSmaller(unsigned int encoding, const QByteArray &plain, QByteArray &raw)
{
    return encoding != 0 && encode(encoding, nullptr, plain, raw) && raw.size() < plain.size();
}

bool StreamCodec::isLossy(unsigned int) const
{
    return false;
}

} // namespace Lantern
