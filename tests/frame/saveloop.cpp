// SPDX-License-Identifier: MIT

// Saves to one file over and over until it is killed, and tells after each save its number.
// Usage: saveloop FILE FIRST-NUMBER

#include "frame/filesystemarchive.h"
#include "savecontent.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.size() != 3)
        return 2;
    auto &archive = Vela::FileSystemArchive::instance();
    for (int number = arguments[2].toInt();; ++number) {
        const QByteArray content = SaveContent::make(number);
        QIODevice *device = archive.openFile(arguments[1], QIODevice::WriteOnly);
        if (!device || device->write(content) != content.size())
            return 1;
        archive.closeFile(device);
        std::printf("%d\n", number);
        std::fflush(stdout);
    }
}
