#include "GuardedMemory.h"

#include <unistd.h>

#include <atomic>
#include <csetjmp>
#include <csignal>
#include <cstring>

namespace {

/// What a thread is just touching.
struct Touch
{
    std::uintptr_t begin = 0; ///< of the first page
    std::uintptr_t end = 0;
    sigjmp_buf way = {}; ///< out of it
};

thread_local Touch *current = nullptr;
struct sigaction before = {};

/// As if the signal had come while the handler of before was installed.
void passOn(int signal, siginfo_t *info, void *context)
{
    ::pthread_sigmask(SIG_BLOCK, &before.sa_mask, nullptr); // until the handler returns
    const bool isSent = info->si_code <= 0;                 // by a process, in place of a touch
    if (before.sa_flags & SA_SIGINFO) {
        before.sa_sigaction(signal, info, context);
    } else if (before.sa_handler != SIG_DFL && before.sa_handler != SIG_IGN) {
        before.sa_handler(signal);
    } else if (before.sa_handler == SIG_DFL || !isSent) {
        // The instruction runs again, and meets the system's own handling.
        ::signal(signal, SIG_DFL);
        if (isSent)
            ::raise(signal);
    }
}

void onBusError(int signal, siginfo_t *info, void *context)
{
    const auto at = reinterpret_cast<std::uintptr_t>(info->si_addr);
    if (info->si_code == BUS_ADRERR && current && at >= current->begin && at < current->end)
        ::siglongjmp(current->way, 1);
    passOn(signal, info, context);
}

bool install()
{
    struct sigaction action = {};
    action.sa_sigaction = onBusError;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    return ::sigaction(SIGBUS, &action, &before) == 0;
}

/// As returning from the handler would have done.
void unblock()
{
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGBUS);
    ::pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
}

/// Once in a process, or the handler of before would be our own.
bool isInstalled()
{
    static const bool result = install();
    return result;
}

/// Runs `work`, which touches these bytes and holds nothing. False if they were taken away.
template <typename Work>
bool touch(const void *begin, std::size_t bytes, const Work &work)
{
    if (!isInstalled())
        return false;
    static const auto page = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
    Touch here;
    here.begin = reinterpret_cast<std::uintptr_t>(begin) / page * page;
    here.end = reinterpret_cast<std::uintptr_t>(begin) + bytes;
    if (sigsetjmp(here.way, 0) != 0) {
        current = nullptr;
        unblock();
        return false;
    }
    current = &here;
    std::atomic_signal_fence(std::memory_order_seq_cst); // the handler reads it
    work();
    std::atomic_signal_fence(std::memory_order_seq_cst);
    current = nullptr;
    return true;
}

} // namespace

bool GuardedMemory::read(void *to, const void *from, std::size_t bytes)
{
    return touch(from, bytes, [=] { std::memcpy(to, from, bytes); });
}

bool GuardedMemory::write(void *to, const void *from, std::size_t bytes)
{
    return touch(to, bytes, [=] { std::memcpy(to, from, bytes); });
}

std::optional<std::uint16_t> GuardedMemory::load(const void *flag)
{
    std::uint16_t value = 0;
    const bool isThere = touch(flag, sizeof(value), [&] {
        value = __atomic_load_n(static_cast<const std::uint16_t *>(flag), __ATOMIC_ACQUIRE);
    });
    return isThere ? std::optional(value) : std::nullopt;
}

bool GuardedMemory::store(void *flag, std::uint16_t value)
{
    return touch(flag, sizeof(value), [=] {
        __atomic_store_n(static_cast<std::uint16_t *>(flag), value, __ATOMIC_RELEASE);
    });
}
