// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

/// Writes a Lantern game of many files into \a folder, which exists: projects of 50 files each, a
/// third of them text and the rest bytes that pack as drawings do. The same numbers give the same
/// bytes. Returns the number of files written, the main files included; 0 on failure.
int writeBigGame(const QString &folder, int projects);
