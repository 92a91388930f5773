// SPDX-License-Identifier: MIT
#pragma once

#include <QtGlobal>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

/// Gives up the right to write everywhere while it lives: tests often run as root.
class OrdinaryUser
{
    const uid_t m_user;

public:
    /// Whether that was possible.
    const bool isOrdinary;

    OrdinaryUser()
        : m_user(geteuid())
        , isOrdinary(m_user != 0 || setresuid(65534, 65534, 0) == 0)
    {
    }

    ~OrdinaryUser()
    {
        if (m_user == 0 && isOrdinary && setresuid(0, 0, 0) != 0)
            qFatal("the test can't go on as another user");
    }
};

/// Lets no file grow over a size while it lives, as a full disk does.
class FullDisk
{
public:
    explicit FullDisk(rlim_t bytes)
    {
        m_handler = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_limit);
        const rlimit small = {bytes, m_limit.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }

    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &m_limit);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    rlimit m_limit = {};
    void (*m_handler)(int) = nullptr;
};
