#pragma once
#include <QByteArray>
#include <QString>

#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

// While it lives no file grows beyond so many bytes.
class CFullDisk
{
public:
    explicit CFullDisk(rlim_t uBytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);   // the write fails instead
        getrlimit(RLIMIT_FSIZE, &m_Before);
        const rlimit full{uBytes, m_Before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~CFullDisk() { setrlimit(RLIMIT_FSIZE, &m_Before); }
    CFullDisk(const CFullDisk&) = delete;
    CFullDisk& operator=(const CFullDisk&) = delete;

private:
    rlimit m_Before{};
};

// A file system of a page on a folder while it lives, for this process alone; not to be had without rights.
class CSmallDisk
{
public:
    explicit CSmallDisk(const QString& strFolder)
        : m_Folder(strFolder.toLocal8Bit()),
          m_bThere(unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                   mount("none", m_Folder.constData(), "tmpfs", 0, "size=4096") == 0)
    {
    }
    ~CSmallDisk()
    {
        if (m_bThere) umount(m_Folder.constData());
    }
    CSmallDisk(const CSmallDisk&) = delete;
    CSmallDisk& operator=(const CSmallDisk&) = delete;
    bool IsThere() const { return m_bThere; }

private:
    const QByteArray m_Folder;
    const bool m_bThere;
};
