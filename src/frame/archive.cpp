// SPDX-License-Identifier: MIT
#include "frame/archive.h"

#include <algorithm>

namespace Vela {

namespace {

bool isSeparator(QChar c)
{
    return c == QLatin1Char('/') || c == QLatin1Char('\\');
}

bool isSeparatorAt(const QString &path, int index)
{
    return index < path.size() && isSeparator(path[index]);
}

bool isSameCharacter(QChar a, QChar b)
{
    return a == b || (isSeparator(a) && isSeparator(b));
}

} // namespace

Archive::~Archive() = default;

bool Archive::commitFile(QIODevice *device)
{
    closeFile(device);
    return true;
}

void Archive::addRef()
{
    ++m_refCount;
}

void Archive::release()
{
    if (--m_refCount == 0)
        free();
}

QStringList Archive::entries(const QString &path, QDir::Filters filters, QDir::SortFlags sort) const
{
    return entries(path, QStringList(), filters, sort);
}

QString Archive::relativePath(const QString &path, const Archive *other, const QString &from) const
{
    if (other != this)
        return path;

    int i = 0;
    int mark = from.size(); // behind the last separator that both paths share
    for (; i < path.size() && i < from.size() && isSameCharacter(path[i], from[i]); ++i) {
        if (isSeparator(from[i]))
            mark = i + 1;
    }

    QString result;
    const bool isInside = i == from.size() && (i == path.size() || isSeparatorAt(path, i));
    if (!isInside) {
        const auto levelsUp = 1 + std::count_if(from.begin() + mark, from.end(), isSeparator);
        result = QStringLiteral("../").repeated(int(levelsUp));
    }

    // The paths may differ in the middle of a name: take the name from its beginning.
    while (i > 0 && !isSeparatorAt(path, i))
        --i;
    return result + path.mid(i + 1);
}

} // namespace Vela
