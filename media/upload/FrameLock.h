#pragma once

#include <omp.h>

#if defined(__SANITIZE_THREAD__)
extern "C" void __tsan_acquire(void *address);
extern "C" void __tsan_release(void *address);
#endif

/// An OpenMP lock as a Lockable of the standard library.
class FrameLock
{
public:
    FrameLock() { omp_init_lock(&m_lock); }
    ~FrameLock() { omp_destroy_lock(&m_lock); }
    FrameLock(const FrameLock &) = delete;
    FrameLock &operator=(const FrameLock &) = delete;

    void lock()
    {
        omp_set_lock(&m_lock);
#if defined(__SANITIZE_THREAD__)
        __tsan_acquire(&m_lock);
#endif
    }

    void unlock()
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_release(&m_lock);
#endif
        omp_unset_lock(&m_lock);
    }

private:
    omp_lock_t m_lock{};
};
