#pragma once
#include <csignal>
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
